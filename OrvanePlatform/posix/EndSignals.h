#pragma once

#include <array>
#include <csignal>

namespace orvane::posix {

/// Takes the signals that ask a process to end (SIGTERM, SIGINT, SIGHUP) and makes the first of them
/// something that can be waited for; the next ends the process as if nobody had taken it. A signal that is
/// ignored stays so. What the signals did before holds again when this object goes. One object at a time.
class EndSignals {
public:
    EndSignals();
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

    /// A file descriptor that can be read once the process is asked to end; there is no need to read it.
    /// -1 where none could be made: then the signals are not taken.
    int descriptor() const;

private:
    static constexpr std::array<int, 3> signals{SIGTERM, SIGINT, SIGHUP};

    static void note(int signal);

    std::array<struct sigaction, signals.size()> m_previous{};
};

} // namespace orvane::posix
