#include "OrvanePlatform/posix/EndWatch.h"

#include <array>
#include <cerrno>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace orvane::posix {

EndWatch::EndWatch(int descriptor, std::function<void()> handler)
    : m_over(::eventfd(0, EFD_CLOEXEC)) {
    if (m_over < 0)
        return;
    m_thread = std::thread([over = m_over, descriptor, handler = std::move(handler)] {
        std::array<pollfd, 2> entries{{{over, POLLIN, 0}, {descriptor, POLLIN, 0}}};
        while (::poll(entries.data(), entries.size(), -1) < 0) {
            if (errno != EINTR && errno != EAGAIN)
                return;
        }
        if (entries.front().revents == 0)
            handler();
    });
}

EndWatch::~EndWatch() {
    if (m_over < 0)
        return;
    ::eventfd_write(m_over, 1);
    m_thread.join();
    ::close(m_over);
}

} // namespace orvane::posix
