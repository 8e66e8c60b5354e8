#include "OrvanePlatform/posix/EndSignals.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace orvane::posix {

namespace {

// A handler is given nothing but the signal's number.
std::array<int, 2> pipeEnds{-1, -1};
std::array<int, 3> takenSignals{};

} // namespace

EndSignals::EndSignals() {
    if (::pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    for (std::size_t i = 0; i < signals.size(); ++i) {
        struct sigaction action {};
        action.sa_handler = &EndSignals::note;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESTART;
        ::sigaction(signals.at(i), nullptr, &m_previous.at(i));
        const bool ignored = m_previous.at(i).sa_handler == SIG_IGN;
        takenSignals.at(i) = ignored ? 0 : signals.at(i);
        if (!ignored)
            ::sigaction(signals.at(i), &action, nullptr);
    }
}

EndSignals::~EndSignals() {
    if (pipeEnds.front() < 0)
        return;
    for (std::size_t i = 0; i < signals.size(); ++i)
        ::sigaction(signals.at(i), &m_previous.at(i), nullptr);
    for (int& end : pipeEnds) {
        ::close(end);
        end = -1;
    }
}

int EndSignals::descriptor() const {
    return pipeEnds.front();
}

void EndSignals::note(int /*signal*/) {
    const int error = errno;
    for (const int taken : takenSignals) {
        if (taken != 0)
            ::signal(taken, SIG_DFL);
    }
    constexpr char byte = 0;
    while (::write(pipeEnds.back(), &byte, 1) < 0 && errno == EINTR) {
    }
    errno = error;
}

} // namespace orvane::posix
