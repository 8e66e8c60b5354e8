#include "OrvanePlatform/posix/DetachedApplication.h"

#include "OrvanePlatform/posix/ThisProcess.h"
#include "tests/support/Eventually.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::posix {
namespace {

using namespace Qt::StringLiterals;
using test::eventually;

/// A home folder, and in the application's place a shell script that tells what it was given and stays until
/// the test is over.
class DetachedApplicationTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(QDir().mkpath(m_home.filePath(u".orvane"_s))); }

    void TearDown() override {
        ASSERT_TRUE(QFile(at(u"end"_s)).open(QIODevice::WriteOnly));
        // The folder goes only when nobody writes to it any more.
        EXPECT_TRUE(
            eventually([this] { return QFile::exists(at(u"started"_s)) == QFile::exists(at(u"ended"_s)); }));
    }

    QString at(const QString& name) const { return m_home.filePath(name); }
    QByteArray native(const QString& name) const { return QFile::encodeName(at(name)); }

    QByteArray content(const QString& name) const {
        QFile file(at(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Makes the application.
    QString application(const QByteArray& work) const {
        QString path = at(u"application"_s);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + work + "\n");
        file.close();
        EXPECT_TRUE(
            file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
        return path;
    }

    /// One that writes down what it was given.
    QString teller() const {
        return application("{ echo \"$#\"; pwd -P; echo \"$ORVANE_STARTED_BY_LAUNCHER\"\n"
                           "ps -o sid= -p $$\n"
                           "for fd in 0 1 2; do readlink /proc/$$/fd/$fd; done\n"
                           "ls /proc/$$/fd | tr '\\n' ' '; } >told.part\n"
                           "mv told.part told");
    }

    QByteArray told() const {
        EXPECT_TRUE(eventually([this] { return QFile::exists(at(u"told"_s)); }));
        return content(u"told"_s);
    }

    using Outcome = ApplicationStarter::Outcome;

    Outcome start(const QString& executable, bool hasDisplay = true) {
        DetachedApplication starter(executable, m_home.path(), [this, hasDisplay] {
            ++m_displayChecks;
            return hasDisplay;
        });
        return starter.start();
    }

    /// Takes the instance lock as the application does; the descriptor holds it.
    int lock() const {
        const int fd = ::open(native(u".orvane/.gui.lock"_s).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        EXPECT_EQ(::flock(fd, LOCK_EX | LOCK_NB), 0);
        return fd;
    }

    QTemporaryDir m_home;
    std::atomic<int> m_displayChecks = 0;
};

TEST_F(DetachedApplicationTest, IsGivenNothingOfOurs) {
    // Without O_CLOEXEC, as an agent's program may leave its own; with a number that no shell uses for
    // itself.
    constexpr int leastNumber = 100;
    const int ours = ::fcntl(STDERR_FILENO, F_DUPFD, leastNumber);
    ASSERT_GE(ours, leastNumber);
    EXPECT_EQ(Outcome::started, start(teller()));
    const QList<QByteArray> lines = told().split('\n');
    ASSERT_EQ(lines.size(), 8) << content(u"told"_s).constData();
    EXPECT_EQ(lines[0], "0") << "arguments";
    EXPECT_EQ(lines[1], QFile::encodeName(QDir(m_home.path()).canonicalPath())) << "working folder";
    EXPECT_EQ(lines[2], "1") << "variable";
    EXPECT_GT(lines[3].trimmed().toLongLong(), 0);
    EXPECT_NE(lines[3].trimmed().toLongLong(), ::getsid(0)) << "session";
    EXPECT_EQ(lines[4], "/dev/null");
    // Its own redirection stands in the place of standard output.
    EXPECT_EQ(lines[5], native(u"told.part"_s));
    EXPECT_EQ(lines[6], "/dev/null");
    EXPECT_FALSE(lines[7].split(' ').contains(QByteArray::number(ours))) << lines[7].constData();
    ::close(ours);
}

TEST_F(DetachedApplicationTest, WritesNothingToOurStreams) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(Outcome::started, start(application("echo out; echo err >&2; : >told")));
    told();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(DetachedApplicationTest, IsNoChildOfOurs) {
    EXPECT_EQ(Outcome::started, start(application("ps -o ppid= -p $$ >told.part; mv told.part told")));
    EXPECT_NE(told().trimmed().toLongLong(), ::getpid());
}

TEST_F(DetachedApplicationTest, SignalsDoToItWhatTheyDoByDefault) {
    surviveBrokenPipes();
    EXPECT_EQ(Outcome::started,
              start(application("sh -c 'kill -s PIPE $$'; echo $? >told.part; mv told.part told")));
    EXPECT_EQ(told().trimmed().toInt(), 128 + SIGPIPE);
    std::signal(SIGPIPE, SIG_DFL);
}

TEST_F(DetachedApplicationTest, IsNotStartedWithoutADisplay) {
    EXPECT_EQ(Outcome::impossible, start(application(": >told"), false));
    EXPECT_EQ(m_displayChecks, 1);
    EXPECT_FALSE(QFile::exists(at(u"told"_s)));
}

TEST_F(DetachedApplicationTest, AnExecutableThatIsNoneIsNotAccepted) {
    EXPECT_EQ(Outcome::impossible, start(at(u"missing"_s)));
    QFile file(at(u"text"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(Outcome::impossible, start(file.fileName()));
}

TEST_F(DetachedApplicationTest, IsNotStartedWhereAnotherHoldsTheLock) {
    const int held = lock();
    EXPECT_EQ(Outcome::notNeeded, start(application(": >told")));
    // Whatever our own display, that one has its own.
    EXPECT_EQ(Outcome::notNeeded, start(application(": >told"), false));
    EXPECT_EQ(m_displayChecks, 0);
    EXPECT_FALSE(QFile::exists(at(u"told"_s)));
    ::close(held);
    EXPECT_EQ(Outcome::started, start(application(": >told")));
    told();
}

TEST_F(DetachedApplicationTest, LeavesTheLockFree) {
    ::close(lock());
    EXPECT_EQ(Outcome::started, start(teller()));
    told();
    ::close(lock());
}

TEST_F(DetachedApplicationTest, MakesNoLockFile) {
    EXPECT_EQ(Outcome::started, start(teller()));
    told();
    EXPECT_FALSE(QFile::exists(at(u".orvane/.gui.lock"_s)));
}

TEST_F(DetachedApplicationTest, StartsWhereTheLockFileCannotBeOpened) {
    ASSERT_TRUE(QDir().rmdir(at(u".orvane"_s)));
    EXPECT_EQ(Outcome::started, start(teller()));
    EXPECT_FALSE(told().isEmpty());
}

TEST_F(DetachedApplicationTest, APipeInTheLocksPlaceIsNotWaitedFor) {
    ASSERT_EQ(::mkfifo(native(u".orvane/.gui.lock"_s).constData(), 0600), 0);
    EXPECT_EQ(Outcome::started, start(teller()));
    EXPECT_FALSE(told().isEmpty());
}

TEST_F(DetachedApplicationTest, ManyAtOnceMakeOne) {
    // As the application does: a copy that does not get the lock within a second leaves.
    const QString executable = application("exec 9<>.orvane/.gui.lock\n"
                                           "flock -x -w 1 9 || { echo left >>left; exit 0; }\n"
                                           "echo started >>started\n"
                                           "while [ -d . ] && [ ! -e end ]; do sleep 0.02; done\n"
                                           "echo ended >>ended");
    std::atomic<int> accepted = 0;
    std::vector<std::thread> launchers;
    launchers.reserve(10);
    for (int i = 0; i < 10; ++i)
        launchers.emplace_back([&] { accepted += start(executable) != Outcome::impossible ? 1 : 0; });
    for (std::thread& launcher : launchers)
        launcher.join();
    EXPECT_EQ(accepted, 10);
    EXPECT_TRUE(eventually([this] { return QFile::exists(at(u"started"_s)); }));
    // Each copy but one has given up by then, or was never made.
    const int others = m_displayChecks - 1;
    EXPECT_TRUE(eventually([&] { return content(u"left"_s).count('\n') == others; }))
        << content(u"left"_s).constData();
    EXPECT_EQ(content(u"started"_s), "started\n");
    EXPECT_EQ(Outcome::notNeeded, start(executable));
    EXPECT_EQ(m_displayChecks, others + 1);
}

} // namespace
} // namespace orvane::posix
