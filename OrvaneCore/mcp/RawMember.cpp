#include "OrvaneCore/mcp/RawMember.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLatin1StringView>

#include <string_view>
#include <tuple>

namespace orvane {

namespace {

constexpr QByteArrayView byteOrderMark("\xef\xbb\xbf");
constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view endsOfScalars = ",:]} \t\r\n\"[{";
/// As many bytes does one of a key take at most, written as "\u0069".
constexpr qsizetype longestEscape = 6;

bool isOneOf(char byte, std::string_view bytes) {
    return bytes.find(byte) != std::string_view::npos;
}

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

/// Walks over a text. What skips gives false where the text does not go on as it would have to.
class Scanner {
public:
    explicit Scanner(QByteArrayView text)
        : m_text(text) {}

    qsizetype at() const { return m_at; }
    bool isAtEnd() const { return m_at >= m_text.size(); }
    bool sees(char byte) const { return !isAtEnd() && m_text[m_at] == byte; }

    bool take(char byte) {
        const bool taken = sees(byte);
        m_at += taken ? 1 : 0;
        return taken;
    }

    void takeByteOrderMark() {
        if (m_text.startsWith(byteOrderMark))
            m_at = byteOrderMark.size();
    }

    void skipBlanks() {
        while (!isAtEnd() && isOneOf(m_text[m_at], blanks))
            ++m_at;
    }

    bool skipDigits() {
        const qsizetype begin = m_at;
        while (!isAtEnd() && isDigit(m_text[m_at]))
            ++m_at;
        return m_at > begin;
    }

    bool skipString() {
        if (!take('"'))
            return false;
        const qsizetype begin = m_at;
        for (;;) {
            const qsizetype quote = m_text.indexOf('"', m_at);
            if (quote < 0)
                return false;
            m_at = quote + 1;
            qsizetype backslashes = 0;
            while (quote - backslashes > begin && m_text[quote - backslashes - 1] == '\\')
                ++backslashes;
            if (backslashes % 2 == 0)
                return true;
        }
    }

    bool skipValue() {
        if (sees('"'))
            return skipString();
        if (sees('{') || sees('['))
            return skipContainer();
        const qsizetype begin = m_at;
        while (!isAtEnd() && !isOneOf(m_text[m_at], endsOfScalars))
            ++m_at;
        return m_at > begin;
    }

private:
    /// Not by recursion: a text may nest as deep as it is long.
    bool skipContainer() {
        qsizetype depth = 0;
        while (!isAtEnd()) {
            if (sees('"')) {
                if (!skipString())
                    return false;
                continue;
            }
            if (sees('{') || sees('[')) {
                ++depth;
            } else if (sees('}') || sees(']')) {
                --depth;
            }
            ++m_at;
            if (depth == 0)
                return true;
        }
        return false;
    }

    QByteArrayView m_text;
    qsizetype m_at = 0;
};

/// `written` is what stands between a key's quotes.
bool means(QByteArrayView written, QByteArrayView key) {
    if (written == key)
        return true;
    if (!written.contains('\\') || written.size() > key.size() * longestEscape)
        return false;
    const QJsonDocument unescaped = QJsonDocument::fromJson("[\"" + written.toByteArray() + "\"]");
    return unescaped.array().first().toString() == QLatin1StringView(key);
}

} // namespace

std::optional<raw_member::Place> raw_member::find(QByteArrayView object, QByteArrayView key) {
    Scanner scanner(object);
    scanner.takeByteOrderMark();
    scanner.skipBlanks();
    if (!scanner.take('{'))
        return std::nullopt;
    std::optional<Place> found;
    do {
        scanner.skipBlanks();
        const qsizetype keyBegin = scanner.at() + 1;
        if (!scanner.skipString())
            return found;
        const QByteArrayView written = object.sliced(keyBegin, scanner.at() - 1 - keyBegin);
        scanner.skipBlanks();
        if (!scanner.take(':'))
            return found;
        scanner.skipBlanks();
        const qsizetype begin = scanner.at();
        if (!scanner.skipValue())
            return found;
        if (means(written, key))
            found = Place{begin, scanner.at() - begin};
        scanner.skipBlanks();
    } while (scanner.take(','));
    return found;
}

bool raw_member::isNumber(QByteArrayView value) {
    Scanner scanner(value);
    scanner.take('-');
    if (!scanner.take('0') && !scanner.skipDigits())
        return false;
    if (scanner.take('.') && !scanner.skipDigits())
        return false;
    if (scanner.take('e') || scanner.take('E')) {
        if (!scanner.take('+'))
            scanner.take('-');
        if (!scanner.skipDigits())
            return false;
    }
    return scanner.isAtEnd();
}

bool raw_member::fitsDouble(QByteArrayView number) {
    bool fits = false;
    std::ignore = number.toDouble(&fits);
    return fits;
}

} // namespace orvane
