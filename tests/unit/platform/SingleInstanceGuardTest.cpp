#include "OrvanePlatform/posix/SingleInstanceGuard.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane::posix {
namespace {

using namespace Qt::StringLiterals;

class SingleInstanceGuardTest : public testing::Test {
protected:
    QString path() const { return m_folder.filePath(u".gui.lock"_s); }

    /// Another process that holds the lock until it is killed.
    pid_t holder() const {
        int ready[2];
        EXPECT_EQ(::pipe(ready), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            const auto lock = SingleInstanceGuard::acquire(path());
            const char answer = lock && lock->holds() ? 1 : 0;
            [[maybe_unused]] const auto written = ::write(ready[1], &answer, 1);
            for (;;)
                ::pause();
        }
        char answer = 0;
        EXPECT_EQ(::read(ready[0], &answer, 1), 1);
        EXPECT_EQ(answer, 1);
        ::close(ready[0]);
        ::close(ready[1]);
        return child;
    }

    static void kill(pid_t child) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(SingleInstanceGuardTest, OneProcessHoldsItAndItsDeathFreesIt) {
    const pid_t child = holder();
    EXPECT_EQ(SingleInstanceGuard::acquire(path()), nullptr);
    kill(child);
    const auto lock = SingleInstanceGuard::acquire(path());
    ASSERT_NE(lock, nullptr);
    EXPECT_TRUE(lock->holds());
    EXPECT_EQ(SingleInstanceGuard::acquire(path()), nullptr) << "not twice in one process either";
}

TEST_F(SingleInstanceGuardTest, IsFreeWhenTheLockGoes) {
    SingleInstanceGuard::acquire(path()).reset();
    EXPECT_NE(SingleInstanceGuard::acquire(path()), nullptr);
}

TEST_F(SingleInstanceGuardTest, TheFileStaysEmptyAndStaysThere) {
    SingleInstanceGuard::acquire(path()).reset();
    const QFileInfo file(path());
    EXPECT_TRUE(file.exists());
    EXPECT_EQ(file.size(), 0);
    QFile written(path());
    ASSERT_TRUE(written.open(QIODevice::WriteOnly));
    written.write("kept");
    written.close();
    SingleInstanceGuard::acquire(path()).reset();
    EXPECT_EQ(QFileInfo(path()).size(), 4);
}

TEST_F(SingleInstanceGuardTest, WhatCannotBeOpenedKeepsNobodyOut) {
    const QString nowhere = path() + u"/missing/.gui.lock"_s;
    const auto first = SingleInstanceGuard::acquire(nowhere);
    const auto second = SingleInstanceGuard::acquire(nowhere);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_FALSE(first->holds());
    EXPECT_FALSE(second->holds());
}

TEST_F(SingleInstanceGuardTest, AProgramStartedMeanwhileDoesNotHoldIt) {
    auto lock = SingleInstanceGuard::acquire(path());
    QProcess program;
    program.start(u"sleep"_s, {u"60"_s});
    ASSERT_TRUE(program.waitForStarted());
    lock.reset();
    EXPECT_NE(SingleInstanceGuard::acquire(path()), nullptr);
    program.kill();
    program.waitForFinished();
}

TEST_F(SingleInstanceGuardTest, AProgramStartedMeanwhileDoesNotHoldItForOneThatDied) {
    std::array<int, 2> ready{-1, -1};
    ASSERT_EQ(::pipe2(ready.data(), O_CLOEXEC), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const auto lock = SingleInstanceGuard::acquire(path());
        QProcess program;
        program.setProgram(u"sleep"_s);
        program.setArguments({u"60"_s});
        qint64 id = 0;
        if (!lock || !program.startDetached(&id))
            id = 0;
        [[maybe_unused]] const auto written = ::write(ready.back(), &id, sizeof id);
        for (;;)
            ::pause();
    }
    qint64 program = 0;
    EXPECT_EQ(::read(ready.front(), &program, sizeof program), ssize_t(sizeof program));
    kill(child);
    ASSERT_GT(program, 0);
    EXPECT_NE(SingleInstanceGuard::acquire(path()), nullptr);
    ::kill(static_cast<pid_t>(program), SIGKILL);
    ::close(ready.front());
    ::close(ready.back());
}

// Between the two steps of starting a program it has all that its parent has.
TEST_F(SingleInstanceGuardTest, IsFreeWhenTheLockGoesThoughAProgramIsBeingStarted) {
    auto lock = SingleInstanceGuard::acquire(path());
    const pid_t child = ::fork();
    if (child == 0) {
        for (;;)
            ::pause();
    }
    lock.reset();
    EXPECT_NE(SingleInstanceGuard::acquire(path()), nullptr);
    kill(child);
}

} // namespace
} // namespace orvane::posix
