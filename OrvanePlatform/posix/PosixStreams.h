#pragma once

#include "OrvaneCore/platform/StandardStreams.h"
#include "OrvanePlatform/posix/EndSignals.h"

#include <memory>
#include <mutex>

namespace orvane::posix {

/// Speaks over two file descriptors, blocking or not. Both stay their owner's: nothing is closed here, and no
/// flag of theirs is changed, since other processes may share them. A reader that has gone makes `write`
/// false and never ends the process.
class PosixStreams final : public StandardStreams {
public:
    /// The process's own standard input and output. From the first read on the input ends also when a signal
    /// asks the process to end, so that what is under way can be brought to its end.
    PosixStreams();
    PosixStreams(int inputFd, int outputFd);

    qsizetype read(std::span<char> buffer) override;
    bool write(QByteArrayView bytes) override;

private:
    bool mayRead();

    int m_inputFd;
    int m_outputFd;
    bool m_heedsSignals = false;
    /// Null until the first read.
    std::unique_ptr<EndSignals> m_endSignals;
    std::mutex m_writing;
};

} // namespace orvane::posix
