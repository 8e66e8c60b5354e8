#include "OrvanePlatform/posix/ThisProcess.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <pty.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane::posix {
namespace {

using namespace Qt::StringLiterals;

class ThisProcessTest : public testing::Test {
protected:
    void SetUp() override {
        // As it is at a program's start, and in a program's that was started by one that ignores the signal.
        sigaction(SIGPIPE, nullptr, &m_before);
        std::signal(SIGPIPE, SIG_IGN);
        surviveBrokenPipes();
    }
    void TearDown() override {
        sigaction(SIGPIPE, &m_before, nullptr);
        qputenv("HOME", m_home);
    }

    /// What becomes of a process that writes to a pipe without a reader.
    static QByteArray whatAChildDies(QProcess& process) {
        process.start(u"/bin/sh"_s, {u"-c"_s, u"sh -c 'kill -s PIPE $$'; echo $?"_s});
        EXPECT_TRUE(process.waitForFinished());
        return process.readAllStandardOutput();
    }

private:
    struct sigaction m_before {};
    const QByteArray m_home = qgetenv("HOME");
};

TEST_F(ThisProcessTest, OutlivesTheReadersOfItsPipes) {
    std::array<int, 2> ends{-1, -1};
    ASSERT_EQ(::pipe(ends.data()), 0);
    ::close(ends.front());
    EXPECT_EQ(::write(ends.back(), "x", 1), -1);
    EXPECT_EQ(errno, EPIPE);
    EXPECT_EQ(::write(ends.back(), "x", 1), -1) << "and not only once";
    ::close(ends.back());
}

TEST_F(ThisProcessTest, ItsChildrenDoNot) {
    QProcess process;
    EXPECT_EQ(whatAChildDies(process), QByteArray::number(128 + SIGPIPE) + '\n');
    // Without Qt's own care.
    const int status = std::system("exec kill -s PIPE $$");
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE) << status;
}

TEST_F(ThisProcessTest, KnowsItsExecutable) {
    EXPECT_TRUE(QDir::isAbsolutePath(executablePath()));
    EXPECT_EQ(QFileInfo(executablePath()).fileName(), u"unit_platform_tests");
    EXPECT_TRUE(QFileInfo(executablePath()).isExecutable());
}

TEST_F(ThisProcessTest, KnowsWhetherItsErrorsGoToATerminal) {
    const int before = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    ASSERT_GE(before, 0);
    int controller = -1;
    int terminal = -1;
    ASSERT_EQ(::openpty(&controller, &terminal, nullptr, nullptr, nullptr), 0);
    ::dup2(terminal, STDERR_FILENO);
    EXPECT_TRUE(standardErrorIsTerminal());
    const int file = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(file, STDERR_FILENO);
    EXPECT_FALSE(standardErrorIsTerminal());
    ::dup2(before, STDERR_FILENO);
    for (const int descriptor : {before, controller, terminal, file})
        ::close(descriptor);
}

TEST_F(ThisProcessTest, NamesTheHomeFolderWhereNobodyHas) {
    const QByteArray home = ::getpwuid(::getuid())->pw_dir;
    qunsetenv("HOME");
    nameHomeFolder();
    EXPECT_EQ(qgetenv("HOME"), home);
    qputenv("HOME", "");
    nameHomeFolder();
    EXPECT_EQ(QDir::homePath(), QString::fromLocal8Bit(home));
    qputenv("HOME", "/elsewhere");
    nameHomeFolder();
    EXPECT_EQ(qgetenv("HOME"), "/elsewhere");
}

} // namespace
} // namespace orvane::posix
