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
    /// The process's own standard input and output.
    PosixStreams();
    PosixStreams(int inputFd, int outputFd);

    /// From now on the input ends also when a signal asks the process to end, so that what is under way can
    /// be brought to its end. The thread that reads.
    void endInputOnSignals();

    /// After `endInputOnSignals`: readable once a signal has asked. -1 where there is none.
    int endDescriptor() const;

    qsizetype read(std::span<char> buffer) override;
    bool write(QByteArrayView bytes) override;

private:
    bool mayRead();

    int m_inputFd;
    int m_outputFd;
    /// Null until signals are to be heeded.
    std::unique_ptr<EndSignals> m_endSignals;
    std::mutex m_writing;
};

} // namespace orvane::posix
