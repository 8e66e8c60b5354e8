#pragma once

#include "OrvaneCore/platform/StandardStreams.h"

#include <mutex>

namespace orvane::posix {

/// Speaks over two file descriptors, blocking or not. Both stay their owner's: nothing is closed here, and no
/// flag of theirs is changed, since other processes may share them. A reader that has gone makes `write`
/// false and never ends the process.
class PosixStreams final : public StandardStreams {
public:
    /// The process's own standard input and output.
    PosixStreams();
    PosixStreams(int inputFd, int outputFd);

    qsizetype read(std::span<char> buffer) override;
    bool write(QByteArrayView bytes) override;

private:
    int m_inputFd;
    int m_outputFd;
    std::mutex m_writing;
};

} // namespace orvane::posix
