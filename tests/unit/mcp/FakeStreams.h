#pragma once

#include "OrvaneCore/platform/StandardStreams.h"

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace orvane {

/// Gives scripted pieces of input, one a read, and keeps every write.
class FakeStreams final : public StandardStreams {
public:
    explicit FakeStreams(QList<QByteArray> pieces)
        : m_pieces(std::move(pieces)) {}

    /// The input cut into pieces of the given size.
    static FakeStreams cut(const QByteArray& input, qsizetype pieceBytes) {
        QList<QByteArray> pieces;
        for (qsizetype at = 0; at < input.size(); at += pieceBytes)
            pieces.append(input.mid(at, pieceBytes));
        return FakeStreams(pieces);
    }

    qsizetype read(std::span<char> buffer) override {
        m_events.append("read ");
        if (m_pieces.isEmpty())
            return 0;
        QByteArray& piece = m_pieces.first();
        const qsizetype count = std::min<qsizetype>(piece.size(), static_cast<qsizetype>(buffer.size()));
        std::memcpy(buffer.data(), piece.constData(), static_cast<size_t>(count));
        piece = piece.mid(count);
        if (piece.isEmpty())
            m_pieces.removeFirst();
        return count;
    }

    bool write(QByteArrayView bytes) override {
        m_events.append("write ");
        if (static_cast<qsizetype>(m_writes.size()) >= writesBeforeReaderLeaves)
            return false;
        m_writes.push_back(bytes.toByteArray().toStdString());
        return true;
    }

    const std::vector<std::string>& writes() const { return m_writes; }
    /// "read " and "write " for each call, in their order.
    const std::string& events() const { return m_events; }

    qsizetype writesBeforeReaderLeaves = std::numeric_limits<qsizetype>::max();

private:
    QList<QByteArray> m_pieces;
    std::vector<std::string> m_writes;
    std::string m_events;
};

} // namespace orvane
