#include "OrvanePlatform/posix/PosixStreams.h"

#include "OrvaneCore/mcp/MCPServer.h"
#include "tests/unit/mcp/FakeToolCallHandler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

namespace orvane::posix {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr size_t mebibyte = size_t{1024} * 1024;

/// Two connected descriptors: what is written to `in` is read from `out`.
class Channel {
public:
    static Channel pipe() {
        std::array<int, 2> fds{-1, -1};
        EXPECT_EQ(::pipe(fds.data()), 0);
        return {fds[0], fds[1]};
    }
    static Channel socket(int type) {
        std::array<int, 2> fds{-1, -1};
        EXPECT_EQ(::socketpair(AF_UNIX, type, 0, fds.data()), 0);
        return {fds[0], fds[1]};
    }

    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;
    ~Channel() {
        closeOut();
        closeIn();
    }

    int out() const { return m_out; }
    int in() const { return m_in; }
    void closeOut() { close(m_out); }
    void closeIn() { close(m_in); }

private:
    Channel(int out, int in)
        : m_out(out)
        , m_in(in) {}

    static void close(int& fd) {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
    }

    int m_out;
    int m_in;
};

void makeNonBlocking(int fd) {
    ASSERT_EQ(::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK), 0);
}

void put(int fd, std::string_view bytes) {
    ASSERT_EQ(::write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

std::string readAll(int fd) {
    std::string all;
    std::vector<char> block(mebibyte);
    for (ssize_t count = 0; (count = ::read(fd, block.data(), block.size())) > 0;)
        all.append(block.data(), static_cast<size_t>(count));
    return all;
}

std::string readOnce(PosixStreams& streams, size_t size = 64) {
    std::string buffer(size, '?');
    buffer.resize(static_cast<size_t>(streams.read(buffer)));
    return buffer;
}

/// Bytes in which a lost, doubled or moved piece shows.
std::string pattern(size_t size) {
    std::string bytes(size, '\0');
    for (size_t at = 0; at < size; ++at)
        bytes[at] = static_cast<char>((at * 2654435761U) >> 13U);
    return bytes;
}

/// A thread that runs one call which may block, and whose sleep in it can be waited for.
template <typename Result>
class BlockedCall {
public:
    template <typename Function>
    explicit BlockedCall(Function function)
        : m_result(m_promise.get_future())
        , m_thread([this, function] {
            m_tid = ::gettid();
            m_promise.set_value(function());
        }) {}

    ~BlockedCall() { m_thread.join(); }
    BlockedCall(const BlockedCall&) = delete;
    BlockedCall& operator=(const BlockedCall&) = delete;

    /// Waits until the thread sleeps in the kernel, twenty times in a row.
    void waitUntilAsleep() {
        const auto deadline = std::chrono::steady_clock::now() + 20s;
        for (int inARow = 0; inARow < 20;) {
            ASSERT_LT(std::chrono::steady_clock::now(), deadline);
            std::this_thread::sleep_for(1ms);
            inARow = isAsleep() ? inARow + 1 : 0;
        }
    }

    void interrupt() { pthread_kill(m_thread.native_handle(), SIGUSR1); }
    bool isDone() { return m_result.wait_for(0s) == std::future_status::ready; }
    Result result() { return m_result.get(); }

private:
    bool isAsleep() const {
        std::ifstream stat("/proc/self/task/" + std::to_string(m_tid) + "/stat");
        std::string line;
        std::getline(stat, line);
        // The state stands behind the name of the thread, which is in parentheses.
        const size_t name = line.rfind(')');
        return name != std::string::npos && line.compare(name, 3, ") S") == 0;
    }

    std::atomic<pid_t> m_tid = 0;
    std::promise<Result> m_promise;
    std::future<Result> m_result;
    std::thread m_thread;
};

/// While it lives, SIGUSR1 interrupts system calls and does nothing else.
class InterruptingSignal {
public:
    InterruptingSignal() {
        struct sigaction action {};
        action.sa_handler = [](int) { arrived = true; };
        sigaction(SIGUSR1, &action, &m_previous);
        arrived = false;
    }
    ~InterruptingSignal() { sigaction(SIGUSR1, &m_previous, nullptr); }
    InterruptingSignal(const InterruptingSignal&) = delete;
    InterruptingSignal& operator=(const InterruptingSignal&) = delete;

    static inline std::atomic<bool> arrived = false;

private:
    struct sigaction m_previous {};
};

void waitForSignal() {
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (!InterruptingSignal::arrived) {
        ASSERT_LT(std::chrono::steady_clock::now(), deadline);
        std::this_thread::sleep_for(1ms);
    }
}

bool sigpipeIsPending() {
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

bool sigpipeIsBlocked() {
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    return sigismember(&blocked, SIGPIPE) == 1;
}

TEST(PosixStreamsRead, GivesWhatIsThereAndThenTheEnd) {
    Channel channel = Channel::pipe();
    PosixStreams streams(channel.out(), -1);
    put(channel.in(), "abcdef");
    EXPECT_EQ(readOnce(streams, 4), "abcd");
    EXPECT_EQ(readOnce(streams, 4), "ef");
    channel.closeIn();
    EXPECT_EQ(readOnce(streams), "");
    EXPECT_EQ(readOnce(streams), "");
}

TEST(PosixStreamsRead, AFailingStreamCountsAsEnded) {
    PosixStreams closed(-1, -1);
    EXPECT_EQ(readOnce(closed), "");
    const int directory = ::open("/", O_RDONLY | O_DIRECTORY);
    PosixStreams unreadable(directory, -1);
    EXPECT_EQ(readOnce(unreadable), "");
    ::close(directory);
}

class PosixStreamsBlocking : public testing::TestWithParam<bool> {
protected:
    static void prepare(int fd) {
        if (GetParam())
            makeNonBlocking(fd);
    }
};
INSTANTIATE_TEST_SUITE_P(All, PosixStreamsBlocking, testing::Bool(), [](const auto& instance) {
    return instance.param ? "NonBlockingDescriptor" : "BlockingDescriptor";
});

TEST_P(PosixStreamsBlocking, ReadWaitsForBytesAndSurvivesASignal) {
    const InterruptingSignal signal;
    Channel channel = Channel::pipe();
    prepare(channel.out());
    PosixStreams streams(channel.out(), -1);

    BlockedCall<std::string> call([&] { return readOnce(streams); });
    call.waitUntilAsleep();
    EXPECT_FALSE(call.isDone());
    call.interrupt();
    waitForSignal();
    call.waitUntilAsleep();
    EXPECT_FALSE(call.isDone());
    put(channel.in(), "late");
    EXPECT_EQ(call.result(), "late");
}

TEST_P(PosixStreamsBlocking, ReadThatWaitsSeesTheEnd) {
    Channel channel = Channel::pipe();
    prepare(channel.out());
    PosixStreams streams(channel.out(), -1);
    BlockedCall<std::string> call([&] { return readOnce(streams); });
    call.waitUntilAsleep();
    channel.closeIn();
    EXPECT_EQ(call.result(), "");
}

TEST_P(PosixStreamsBlocking, WriteHandsOverMoreThanFitsAndSurvivesASignal) {
    const InterruptingSignal signal;
    const std::string payload = pattern(8 * mebibyte);
    for (const bool isPipe : {true, false}) {
        Channel channel = isPipe ? Channel::pipe() : Channel::socket(SOCK_STREAM);
        prepare(channel.in());
        PosixStreams streams(-1, channel.in());

        BlockedCall<bool> call([&] { return streams.write(payload); });
        call.waitUntilAsleep();
        InterruptingSignal::arrived = false;
        call.interrupt();
        waitForSignal();
        call.waitUntilAsleep();
        EXPECT_FALSE(call.isDone());

        auto received = std::async(std::launch::async, [&] { return readAll(channel.out()); });
        EXPECT_TRUE(call.result());
        channel.closeIn();
        EXPECT_TRUE(received.get() == payload) << "isPipe " << isPipe;
    }
}

TEST_P(PosixStreamsBlocking, WriteToAReaderThatHasGoneIsFalseAndHarmless) {
    const auto before = std::signal(SIGPIPE, SIG_DFL);
    for (const bool isPipe : {true, false}) {
        Channel channel = isPipe ? Channel::pipe() : Channel::socket(SOCK_STREAM);
        prepare(channel.in());
        PosixStreams streams(-1, channel.in());
        channel.closeOut();
        EXPECT_FALSE(streams.write("reply\n"));
        EXPECT_FALSE(streams.write(std::string(mebibyte, 'x')));
        EXPECT_FALSE(sigpipeIsPending());
        EXPECT_FALSE(sigpipeIsBlocked());
    }
    std::signal(SIGPIPE, before);
}

TEST_P(PosixStreamsBlocking, AReaderThatLeavesInTheMiddleEndsTheWrite) {
    Channel channel = Channel::pipe();
    prepare(channel.in());
    PosixStreams streams(-1, channel.in());
    const std::string payload(4 * mebibyte, 'x');
    BlockedCall<bool> call([&] { return streams.write(payload); });
    call.waitUntilAsleep();
    EXPECT_FALSE(call.isDone());
    channel.closeOut();
    EXPECT_FALSE(call.result());
}

TEST_P(PosixStreamsBlocking, WritesOfSeveralThreadsDoNotMix) {
    constexpr size_t lineBytes = 200'000;
    constexpr size_t linesEach = 5;
    Channel channel = Channel::pipe();
    prepare(channel.in());
    PosixStreams streams(-1, channel.in());

    auto received = std::async(std::launch::async, [&] { return readAll(channel.out()); });
    {
        std::vector<std::jthread> threads;
        for (const char letter : {'a', 'b', 'c', 'd'}) {
            threads.emplace_back([&streams, letter] {
                for (size_t line = 0; line < linesEach; ++line)
                    EXPECT_TRUE(streams.write(std::string(lineBytes, letter) + '\n'));
            });
        }
    }
    channel.closeIn();

    const std::string all = received.get();
    ASSERT_EQ(all.size(), 4 * linesEach * (lineBytes + 1));
    for (size_t at = 0; at < all.size(); at += lineBytes + 1)
        EXPECT_TRUE(all.compare(at, lineBytes + 1, std::string(lineBytes, all[at]) + '\n') == 0) << at;
}

TEST(PosixStreamsWrite, KeepsASigpipeThatWasPendingBefore) {
    sigset_t sigpipe;
    sigemptyset(&sigpipe);
    sigaddset(&sigpipe, SIGPIPE);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &sigpipe, nullptr), 0);
    pthread_kill(pthread_self(), SIGPIPE);

    Channel channel = Channel::pipe();
    channel.closeOut();
    PosixStreams streams(-1, channel.in());
    EXPECT_FALSE(streams.write("x"));
    EXPECT_TRUE(sigpipeIsPending());
    EXPECT_TRUE(sigpipeIsBlocked());

    int taken = 0;
    sigwait(&sigpipe, &taken);
    EXPECT_EQ(taken, SIGPIPE);
    pthread_sigmask(SIG_UNBLOCK, &sigpipe, nullptr);
}

TEST(PosixStreamsWrite, IsFalseOnADescriptorThatCannotBeWritten) {
    PosixStreams closed(-1, -1);
    EXPECT_FALSE(closed.write("x"));
    Channel channel = Channel::pipe();
    PosixStreams readOnly(-1, channel.out());
    EXPECT_FALSE(readOnly.write("x"));
}

TEST(PosixStreamsWrite, OfNothingIsTrueAndWritesNothing) {
    Channel channel = Channel::pipe();
    PosixStreams streams(-1, channel.in());
    EXPECT_TRUE(streams.write({}));
    channel.closeIn();
    EXPECT_EQ(readAll(channel.out()), "");
}

TEST(PosixStreams, LeavesTheDescriptorsOpenAndTheirFlagsAlone) {
    Channel channel = Channel::socket(SOCK_STREAM);
    makeNonBlocking(channel.in());
    const int inFlags = ::fcntl(channel.in(), F_GETFL);
    const int outFlags = ::fcntl(channel.out(), F_GETFL);
    {
        PosixStreams streams(channel.out(), channel.in());
        EXPECT_TRUE(streams.write("x"));
        EXPECT_EQ(readOnce(streams), "x");
    }
    EXPECT_EQ(::fcntl(channel.in(), F_GETFL), inFlags);
    EXPECT_EQ(::fcntl(channel.out(), F_GETFL), outFlags);
}

// A sequential-packet socket keeps the bounds of each write, so one packet is one system call.
TEST(PosixStreams, TheServersRepliesReachTheSystemInOneCallEach) {
    Channel channel = Channel::socket(SOCK_SEQPACKET);
    Channel input = Channel::pipe();
    put(input.in(), "{\"id\":1,\"method\":\"tools/list\"}\n{\"id\":2,\"method\":\"ping\"}\n");
    input.closeIn();

    FakeToolCallHandler handler;
    PosixStreams streams(input.out(), channel.in());
    MCPServer(handler).run(streams);

    std::string packet(mebibyte, '\0');
    packet.resize(static_cast<size_t>(::read(channel.out(), packet.data(), packet.size())));
    EXPECT_THAT(packet, testing::StartsWith("{\"id\":1,"));
    EXPECT_THAT(packet, testing::EndsWith("}\n"));
    std::string next(mebibyte, '\0');
    next.resize(static_cast<size_t>(::read(channel.out(), next.data(), next.size())));
    EXPECT_EQ(next, "{\"id\":2,\"jsonrpc\":\"2.0\",\"result\":{}}\n");
}

TEST(PosixStreams, TheServerEndsWhenItsReaderHasGone) {
    Channel replies = Channel::pipe();
    replies.closeOut();
    Channel input = Channel::pipe();
    put(input.in(), "{\"id\":1,\"method\":\"tools/call\"}\n{\"id\":2,\"method\":\"tools/call\"}\n");

    FakeToolCallHandler handler;
    PosixStreams streams(input.out(), replies.in());
    MCPServer(handler).run(streams);
    EXPECT_EQ(handler.calls().size(), 1U);
}

} // namespace
} // namespace orvane::posix
