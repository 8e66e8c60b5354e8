#include "OrvanePlatform/freedesktop/AutostartFile.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/freedesktop/DesktopEntryKeys.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <filesystem>

#include <sys/stat.h>

namespace orvane::freedesktop {
namespace {

using namespace Qt::StringLiterals;

const QByteArray shown = "[Desktop Entry]\nType=Application\nName=Orvane\nExec=orvane\n";

bool isStarted(const QByteArray& moreKeys, const QStringList& desktops = {}) {
    return isStartedAtLogin(shown + moreKeys, desktops);
}

QByteArray lineOf(const QByteArray& entry, const QByteArray& key) {
    for (const QByteArray& line : entry.split('\n')) {
        if (line.startsWith(key + '='))
            return line;
    }
    return {};
}

/// A user's and two system-wide autostart folders, none of which is there at first, and a program.
class AutostartFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_folder.isValid());
        qunsetenv("XDG_CURRENT_DESKTOP");
        makeProgram(m_program);
    }

    QString under(const QString& relative) const { return m_folder.filePath(relative); }

    static void write(const QString& path, const QByteArray& bytes) {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    static void makeProgram(const QString& path) {
        write(path, "#!/bin/sh\n");
        ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    static QByteArray contentOf(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return file.readAll();
    }

    static QString messageOf(void (AutostartFile::*action)(), AutostartFile& entry) {
        try {
            (entry.*action)();
        } catch (const PlatformError& error) {
            return error.message();
        }
        return {};
    }

    QStringList userEntries() const {
        return QDir(under(u"user/autostart"_s))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    QTemporaryDir m_folder;
    QString m_program = m_folder.filePath(u"orvane"_s);
    QString m_userFile = m_folder.filePath(u"user/autostart/com.orvane.app.desktop"_s);
    QString m_systemFile = m_folder.filePath(u"system/autostart/com.orvane.app.desktop"_s);
    QString m_lastFile = m_folder.filePath(u"last/autostart/com.orvane.app.desktop"_s);
    AutostartFile m_entry{m_program,
                          {m_folder.filePath(u"user/autostart"_s), m_folder.filePath(u"system/autostart"_s),
                           m_folder.filePath(u"last/autostart"_s)}};
};

} // namespace

// What desktops make of an entry

TEST(AutostartRules, AnApplicationWithACommandIsStarted) {
    EXPECT_TRUE(isStarted(""));
    EXPECT_TRUE(isStarted("Hidden=false\nX-GNOME-Autostart-enabled=true\nNoDisplay=true\nTerminal=true\n"));
}

TEST(AutostartRules, OtherFilesAreNot) {
    EXPECT_FALSE(isStartedAtLogin("", {}));
    EXPECT_FALSE(isStartedAtLogin("[Desktop Entry]\nType=Application\nName=Orvane\n", {}));
    EXPECT_FALSE(isStartedAtLogin("[Desktop Entry]\nType=Link\nName=Orvane\nExec=orvane\n", {}));
    EXPECT_FALSE(isStartedAtLogin("Type=Application\nName=Orvane\nExec=orvane\n", {}));
    EXPECT_FALSE(isStartedAtLogin(QByteArray(1000, '\xff'), {}));
}

TEST(AutostartRules, AHiddenEntryIsNot) {
    EXPECT_FALSE(isStarted("Hidden=true\n"));
    EXPECT_FALSE(isStarted(" Hidden = true \n"));
    EXPECT_TRUE(isStarted("#Hidden=true\n"));
    EXPECT_TRUE(isStarted("[Desktop Action a]\nHidden=true\n"));
}

TEST(AutostartRules, TheLastOfAKeyThatComesAgainCounts) {
    EXPECT_FALSE(isStarted("Hidden=false\nHidden=true\n"));
    EXPECT_TRUE(isStarted("Hidden=true\nHidden=false\n"));
}

TEST(AutostartRules, GnomesSwitchCounts) {
    EXPECT_FALSE(isStarted("X-GNOME-Autostart-enabled=false\n"));
}

TEST(AutostartRules, OnlyTheDesktopsItIsMeantFor) {
    EXPECT_TRUE(isStarted("OnlyShowIn=XFCE;GNOME;\n", {u"ubuntu"_s, u"GNOME"_s}));
    EXPECT_FALSE(isStarted("OnlyShowIn=XFCE;GNOME;\n", {u"KDE"_s}));
    EXPECT_FALSE(isStarted("OnlyShowIn=XFCE;\n", {}));
    EXPECT_FALSE(isStarted("NotShowIn=XFCE;GNOME\n", {u"GNOME"_s}));
    EXPECT_TRUE(isStarted("NotShowIn=XFCE;GNOME\n", {u"KDE"_s}));
    EXPECT_TRUE(isStarted("NotShowIn=XFCE;\n", {}));
}

TEST_F(AutostartFileTest, WhatTryExecNamesMustBeAProgram) {
    EXPECT_TRUE(isStarted("TryExec=" + m_program.toUtf8() + '\n'));
    EXPECT_FALSE(isStarted("TryExec=" + under(u"missing"_s).toUtf8() + '\n'));
    EXPECT_FALSE(isStarted("TryExec=" + m_folder.path().toUtf8() + '\n'));
    write(under(u"plain"_s), "x");
    EXPECT_FALSE(isStarted("TryExec=" + under(u"plain"_s).toUtf8() + '\n'));
    // A name alone is looked for in PATH.
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(m_folder.path()));
    EXPECT_TRUE(isStarted("TryExec=orvane\n"));
    EXPECT_FALSE(isStarted("TryExec=missing\n"));
    qputenv("PATH", path);
}

// The entry

TEST(AutostartEntryText, StartsThePlainProgram) {
    EXPECT_EQ(autostartEntryOf(u"/usr/bin/orvane"_s),
              "[Desktop Entry]\n"
              "Type=Application\n"
              "Name=Orvane\n"
              "Comment=Show an AI agent what you mean, on your own screen\n"
              "Icon=com.orvane.app\n"
              "Exec=/usr/bin/orvane\n"
              "TryExec=/usr/bin/orvane\n"
              "Terminal=false\n"
              "StartupNotify=false\n");
}

TEST(AutostartEntryText, QuotesOddPathsForTheCommandLineAndThenForTheFile) {
    struct Case {
        const char16_t* path;
        QByteArray exec;
        QByteArray tryExec;
    };
    const QByteArray shell = R"(sh -c "exec \\"\\$0\\"" )";
    const Case cases[] = {
        {u"/a b/orvane", R"("/a b/orvane")", "/a b/orvane"},
        {u"/a\"b/orvane", R"("/a\\"b/orvane")", R"(/a"b/orvane)"},
        {u"/a'b/orvane", R"("/a'b/orvane")", "/a'b/orvane"},
        {u"/a%b/orvane", shell + "/a%%b/orvane", "/a%b/orvane"},
        {u"/a%f b/orvane", shell + R"("/a%%f b/orvane")", "/a%f b/orvane"},
        {u"/a=b/orvane", shell + "/a=b/orvane", "/a=b/orvane"},
        {u"/a\\b/orvane", R"("/a\\\\b/orvane")", R"(/a\\b/orvane)"},
        {u"/$HOME/orvane", R"("/\\$HOME/orvane")", "/$HOME/orvane"},
        {u"/a`b/orvane", R"("/a\\`b/orvane")", "/a`b/orvane"},
        {u"/a;b/orvane", R"("/a;b/orvane")", "/a;b/orvane"},
        {u"/a\nb\tc\rd/orvane", R"("/a\nb\tc\rd/orvane")", R"(/a\nb\tc\rd/orvane)"},
        {u"/a/orvane ", R"("/a/orvane ")", R"(/a/orvane\s)"},
        {u"/%1/%2/orvane", shell + "/%%1/%%2/orvane", "/%1/%2/orvane"},
        {u"/日本/orvane", "/日本/orvane", "/日本/orvane"},
    };
    for (const Case& odd : cases) {
        const QString path = QString::fromUtf16(odd.path);
        const QByteArray entry = autostartEntryOf(path);
        EXPECT_EQ(lineOf(entry, "Exec"), "Exec=" + odd.exec);
        EXPECT_EQ(lineOf(entry, "TryExec"), "TryExec=" + odd.tryExec);
        EXPECT_EQ(readDesktopEntryKeys(entry).value(u"TryExec"_s), path);
        EXPECT_EQ(entry.count('\n'), 9) << odd.exec.toStdString();
    }
}

TEST(DesktopEntryKeys, GiveBackWhatWasEscaped) {
    for (const QString& value : {u""_s, u" "_s, u"  a  "_s, u"\\"_s, u"\\s\\n"_s, u"a\n\t\rb"_s, u"=[#;"_s}) {
        const QByteArray file = "[Desktop Entry]\nKey=" + escapedDesktopEntryValue(value).toUtf8() + '\n';
        EXPECT_EQ(readDesktopEntryKeys(file).value(u"Key"_s), value) << file.toStdString();
    }
}

// The files

TEST_F(AutostartFileTest, NothingIsRegisteredAtFirstAndLookingMakesNothing) {
    EXPECT_FALSE(m_entry.isRegistered());
    EXPECT_FALSE(QFileInfo::exists(under(u"user"_s)));
}

TEST_F(AutostartFileTest, RegistersTheProgramForTheUser) {
    m_entry.registerEntry();
    EXPECT_TRUE(m_entry.isRegistered());
    EXPECT_EQ(contentOf(m_userFile), autostartEntryOf(m_program));
    EXPECT_EQ(userEntries(), QStringList{u"com.orvane.app.desktop"_s});
}

TEST_F(AutostartFileTest, UnregistersAndLeavesNothing) {
    m_entry.registerEntry();
    m_entry.unregisterEntry();
    EXPECT_FALSE(m_entry.isRegistered());
    EXPECT_EQ(userEntries(), QStringList{});
}

TEST_F(AutostartFileTest, UnregisteringWhatIsNotThereIsNoFailure) {
    m_entry.unregisterEntry();
    EXPECT_FALSE(QFileInfo::exists(under(u"user"_s)));
}

TEST_F(AutostartFileTest, IsNotRegisteredOnceTheProgramIsGone) {
    m_entry.registerEntry();
    ASSERT_TRUE(QFile::remove(m_program));
    EXPECT_FALSE(m_entry.isRegistered());
}

TEST_F(AutostartFileTest, WhatADesktopSwitchedOffIsOffUntilItIsRegisteredAgain) {
    m_entry.registerEntry();
    write(m_userFile, contentOf(m_userFile) + "Hidden=true\n");
    EXPECT_FALSE(m_entry.isRegistered());
    m_entry.registerEntry();
    EXPECT_TRUE(m_entry.isRegistered());
}

TEST_F(AutostartFileTest, ASystemWideEntryCounts) {
    write(m_lastFile, shown);
    EXPECT_TRUE(m_entry.isRegistered());
}

TEST_F(AutostartFileTest, OnlyTheFirstFolderThatHasTheFileCounts) {
    write(m_lastFile, shown);
    write(m_systemFile, shown + "Hidden=true\n");
    EXPECT_FALSE(m_entry.isRegistered());
    write(m_userFile, shown);
    EXPECT_TRUE(m_entry.isRegistered());
}

TEST_F(AutostartFileTest, KnowsTheDesktopItRunsOn) {
    write(m_userFile, shown + "OnlyShowIn=XFCE;\n");
    EXPECT_FALSE(m_entry.isRegistered());
    qputenv("XDG_CURRENT_DESKTOP", "Xubuntu:XFCE");
    EXPECT_TRUE(m_entry.isRegistered());
}

TEST_F(AutostartFileTest, HidesASystemWideEntryAndShowsItAgain) {
    write(m_systemFile, shown);
    m_entry.unregisterEntry();
    EXPECT_FALSE(m_entry.isRegistered());
    EXPECT_EQ(readDesktopEntryKeys(contentOf(m_userFile)).value(u"Hidden"_s), u"true");
    EXPECT_EQ(contentOf(m_systemFile), shown);
    m_entry.registerEntry();
    EXPECT_TRUE(m_entry.isRegistered());
    EXPECT_EQ(contentOf(m_userFile), autostartEntryOf(m_program));
}

TEST_F(AutostartFileTest, ALinkToNothingMasksAndIsReplaced) {
    write(m_systemFile, shown);
    ASSERT_TRUE(QDir().mkpath(under(u"user/autostart"_s)));
    std::filesystem::create_symlink("/dev/null", QFileInfo(m_userFile).filesystemFilePath());
    EXPECT_FALSE(m_entry.isRegistered());
    m_entry.registerEntry();
    EXPECT_TRUE(m_entry.isRegistered());
    EXPECT_FALSE(QFileInfo(m_userFile).isSymLink());
}

// Whoever reads from it waits for somebody who writes.
TEST_F(AutostartFileTest, APipeMasksAndIsNotWaitedFor) {
    write(m_systemFile, shown);
    ASSERT_TRUE(QDir().mkpath(under(u"user/autostart"_s)));
    ASSERT_EQ(::mkfifo(QFile::encodeName(m_userFile).constData(), 0600), 0);
    EXPECT_FALSE(m_entry.isRegistered());
}

TEST_F(AutostartFileTest, RemovesALinkAndNotWhatItLeadsTo) {
    const QString target = under(u"applications/com.orvane.app.desktop"_s);
    write(target, shown);
    ASSERT_TRUE(QDir().mkpath(under(u"user/autostart"_s)));
    ASSERT_TRUE(QFile::link(target, m_userFile));
    EXPECT_TRUE(m_entry.isRegistered());
    m_entry.unregisterEntry();
    EXPECT_FALSE(m_entry.isRegistered());
    EXPECT_EQ(contentOf(target), shown);
}

TEST_F(AutostartFileTest, SaysWhatCannotBeWritten) {
    write(under(u"user"_s), "a file where the folder should be");
    EXPECT_EQ(messageOf(&AutostartFile::registerEntry, m_entry),
              u"The folder %1 cannot be made."_s.arg(under(u"user/autostart"_s)));
    EXPECT_FALSE(m_entry.isRegistered());
    ASSERT_TRUE(QFile::remove(under(u"user"_s)));
    ASSERT_TRUE(QDir().mkpath(m_userFile));
    EXPECT_EQ(messageOf(&AutostartFile::registerEntry, m_entry),
              u"The file %1 cannot be written."_s.arg(m_userFile));
    EXPECT_FALSE(m_entry.isRegistered());
}

TEST_F(AutostartFileTest, SaysWhatCannotBeRemoved) {
    ASSERT_TRUE(QDir().mkpath(m_userFile));
    const QString message = messageOf(&AutostartFile::unregisterEntry, m_entry);
    EXPECT_TRUE(message.startsWith(u"The file %1 cannot be removed: "_s.arg(m_userFile)))
        << message.toStdString();
}

TEST_F(AutostartFileTest, RefusesAProgramThatIsGone) {
    ASSERT_TRUE(QFile::remove(m_program));
    EXPECT_EQ(messageOf(&AutostartFile::registerEntry, m_entry),
              u"There is no program %1 any more; start Orvane anew."_s.arg(m_program));
    EXPECT_FALSE(QFileInfo::exists(m_userFile));
}

TEST_F(AutostartFileTest, StandsWhereTheDesktopLooks) {
    qputenv("HOME", "/home/somebody");
    qputenv("XDG_CONFIG_HOME", "/elsewhere");
    qputenv("XDG_CONFIG_DIRS", "/first:/second");
    EXPECT_EQ(AutostartFile::standardFolders(),
              (QStringList{u"/elsewhere/autostart"_s, u"/first/autostart"_s, u"/second/autostart"_s}));
    for (const char* unusable : {"", "relative/path"}) {
        qputenv("XDG_CONFIG_HOME", unusable);
        qputenv("XDG_CONFIG_DIRS", unusable);
        EXPECT_EQ(AutostartFile::standardFolders(),
                  (QStringList{u"/home/somebody/.config/autostart"_s, u"/etc/xdg/autostart"_s}))
            << unusable;
    }
}

} // namespace orvane::freedesktop
