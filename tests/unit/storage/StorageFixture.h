#pragma once

#include "OrvaneCore/storage/SessionFolders.h"
#include "OrvaneCore/storage/StoragePaths.h"
#include "tests/support/InMemorySettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

namespace orvane {

/// A home folder, a trash and a clock, and what is kept there. Sleeping moves the clock and takes no time.
class StorageFixture : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_home.isValid());
        // The trash is chosen by the volume of the home folder, then by XDG_DATA_HOME.
        qputenv("HOME", QFile::encodeName(home()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(under(QStringLiteral("data"))));
    }

    QString home() const { return m_home.path(); }
    QString under(const QString& relative) const { return home() + QLatin1Char('/') + relative; }
    QString captures(const QString& name = {}) const {
        return under(QStringLiteral(".orvane/captures/")) + name;
    }
    QString sessions(const QString& name = {}) const {
        return under(QStringLiteral(".orvane/sessions/")) + name;
    }

    static std::filesystem::path native(const QString& path) { return QFileInfo(path).filesystemFilePath(); }

    static void writeFile(const QString& path, const QByteArray& bytes = "x") {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    static void makeFolder(const QString& path) { ASSERT_TRUE(QDir().mkpath(path)); }

    static void makeLink(const QString& target, const QString& link) {
        std::filesystem::create_symlink(native(target), native(link));
    }

    /// Also true for a link that leads nowhere.
    static bool isThere(const QString& path) {
        return std::filesystem::exists(std::filesystem::symlink_status(native(path)));
    }

    QDateTime cutoff() const { return m_now.addSecs(-qint64(30) * 86400); }

    /// Dates an entry relative to the moment before which the default retention deletes.
    void datePast(const QString& path, std::chrono::nanoseconds beforeCutoff) const {
        const std::chrono::sys_time<std::chrono::milliseconds> exact(
            std::chrono::milliseconds(cutoff().toMSecsSinceEpoch()));
        const std::chrono::file_time<std::chrono::nanoseconds> fileTime =
            std::chrono::file_clock::from_sys(exact);
        std::filesystem::last_write_time(native(path), fileTime - beforeCutoff);
    }

    void makeOld(const QString& path) const { datePast(path, std::chrono::hours(1)); }

    QTemporaryDir m_home;
    test::InMemorySettings m_settings;
    QDateTime m_now = QDateTime(QDate(2026, 11, 15), QTime(9, 26, 11, 482));
    StoragePaths m_paths{m_settings, m_home.path()};
    SessionFolders::WallClock m_clock = [this] { return m_now; };
    SessionFolders::Sleep m_sleep = [this](std::chrono::milliseconds time) {
        m_now = m_now.addMSecs(time.count());
    };
    SessionFolders m_folders{m_paths, m_clock, m_sleep};
};

} // namespace orvane
