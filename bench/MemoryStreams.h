#pragma once

#include "OrvaneCore/platform/StandardStreams.h"

#include <QByteArray>

#include <algorithm>
#include <cstring>
#include <utility>

namespace orvane::bench {

/// Input from memory, at most as much a read as a pipe holds, and output that is counted and thrown away.
class MemoryStreams final : public StandardStreams {
public:
    /// What a Linux pipe holds unless it is told otherwise.
    static constexpr qsizetype pipeBytes = qsizetype{64} * 1024;

    explicit MemoryStreams(QByteArray input)
        : m_input(std::move(input)) {}

    qsizetype read(std::span<char> buffer) override {
        const qsizetype count =
            std::min({m_input.size() - m_at, pipeBytes, static_cast<qsizetype>(buffer.size())});
        std::memcpy(buffer.data(), m_input.constData() + m_at, static_cast<size_t>(count));
        m_at += count;
        return count;
    }

    bool write(QByteArrayView bytes) override {
        m_written += bytes.size();
        return true;
    }

    qsizetype written() const { return m_written; }

private:
    QByteArray m_input;
    qsizetype m_at = 0;
    qsizetype m_written = 0;
};

} // namespace orvane::bench
