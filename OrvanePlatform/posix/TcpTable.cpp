#include "OrvanePlatform/posix/TcpTable.h"

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace orvane::posix {

namespace {

using tcp_table::Address;
using tcp_table::End;
using tcp_table::Row;

/// The columns of a row that count here.
enum Column : qsizetype {
    localColumn = 1,
    remoteColumn = 2,
    stateColumn = 3,
    ownerColumn = 7,
    inodeColumn = 9
};
/// TCP_LISTEN, as all numbers but owner and inode in hexadecimal.
constexpr auto listening = "0A";
constexpr int hexadecimal = 16;
constexpr qsizetype digitsOfWord = 8;
constexpr qsizetype digitsOfIpv4 = digitsOfWord;
constexpr qsizetype digitsOfIpv6 = 4 * digitsOfWord;

/// The kernel writes 32 bits of an address at a time as a number of this machine's, whose bytes are the
/// address.
bool readWords(QByteArrayView digits, quint8* bytes) {
    for (qsizetype at = 0; at < digits.size(); at += digitsOfWord) {
        bool isNumber = false;
        const quint32 word = digits.sliced(at, digitsOfWord).toUInt(&isNumber, hexadecimal);
        if (!isNumber)
            return false;
        std::memcpy(bytes, &word, sizeof word);
        bytes += sizeof word;
    }
    return true;
}

std::optional<End> readEnd(QByteArrayView text) {
    const qsizetype colon = text.indexOf(':');
    if (colon != digitsOfIpv4 && colon != digitsOfIpv6)
        return std::nullopt;
    End end;
    bool isNumber = false;
    end.port = text.sliced(colon + 1).toUShort(&isNumber, hexadecimal);
    const QByteArrayView digits = text.first(colon);
    if (colon == digitsOfIpv4) {
        std::array<quint8, 4> ipv4{};
        isNumber = isNumber && readWords(digits, ipv4.data());
        end.address = tcp_table::mappedAddress(ipv4);
    } else {
        isNumber = isNumber && readWords(digits, end.address.data());
    }
    return isNumber ? std::optional(end) : std::nullopt;
}

std::optional<Row> readRow(const QByteArray& line) {
    const QList<QByteArray> columns = line.simplified().split(' ');
    if (columns.size() <= inodeColumn)
        return std::nullopt;
    const std::optional<End> local = readEnd(columns[localColumn]);
    const std::optional<End> remote = readEnd(columns[remoteColumn]);
    bool hasOwner = false;
    const quint32 owner = columns[ownerColumn].toUInt(&hasOwner);
    if (!local || !remote || !hasOwner)
        return std::nullopt;
    return Row{.local = *local,
               .remote = *remote,
               .listens = columns[stateColumn] == listening,
               .owner = owner,
               .isHeld = columns[inodeColumn] != "0"};
}

/// The one owner of all rows that are asked for.
template <typename Wanted>
std::optional<quint32> commonOwner(const std::vector<Row>& rows, Wanted wanted) {
    const auto first = std::find_if(rows.begin(), rows.end(), wanted);
    if (first == rows.end() || std::any_of(std::next(first), rows.end(), [&](const Row& row) {
            return wanted(row) && row.owner != first->owner;
        }))
        return std::nullopt;
    return first->owner;
}

} // namespace

Address tcp_table::mappedAddress(const std::array<quint8, 4>& ipv4) {
    Address address{};
    address[mappedPrefix - 2] = address[mappedPrefix - 1] = 0xff;
    std::copy(ipv4.begin(), ipv4.end(), address.begin() + mappedPrefix);
    return address;
}

bool tcp_table::isMapped(const Address& address) {
    const Address any = mappedAddress({});
    return std::equal(any.begin(), any.begin() + mappedPrefix, address.begin());
}

bool tcp_table::isLoopback(const Address& address) {
    constexpr Address ipv6{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    constexpr quint8 ipv4Net = 127;
    return address == ipv6 || (isMapped(address) && address[mappedPrefix] == ipv4Net);
}

std::vector<Row> tcp_table::parse(QByteArrayView table) {
    std::vector<Row> rows;
    for (qsizetype at = 0; at < table.size();) {
        const qsizetype lineEnd = table.indexOf('\n', at);
        const qsizetype end = lineEnd < 0 ? table.size() : lineEnd;
        if (const auto row = readRow(table.sliced(at, end - at).toByteArray()))
            rows.push_back(*row);
        at = end + 1;
    }
    return rows;
}

std::optional<quint32> tcp_table::ownerOfOtherEnd(const std::vector<Row>& rows, const End& ours,
                                                  const End& theirs) {
    const auto isOtherEnd = [&](const Row& row) {
        return !row.listens && row.isHeld && row.local == theirs && row.remote == ours;
    };
    const auto listensThere = [&](const Row& row) { return row.listens && row.local == theirs; };
    // "::" may take connections over IPv4, too.
    const auto listensAnywhere = [&](const Row& row) {
        return row.listens && row.local.port == theirs.port &&
               (row.local.address == Address{} ||
                (tcp_table::isMapped(theirs.address) && row.local.address == mappedAddress({})));
    };
    if (std::any_of(rows.begin(), rows.end(), isOtherEnd))
        return commonOwner(rows, isOtherEnd);
    if (std::any_of(rows.begin(), rows.end(), listensThere))
        return commonOwner(rows, listensThere);
    return commonOwner(rows, listensAnywhere);
}

} // namespace orvane::posix
