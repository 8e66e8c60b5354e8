#include "OrvanePlatform/freedesktop/DesktopEntries.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <array>
#include <chrono>
#include <filesystem>
#include <utility>
#include <vector>

namespace orvane::freedesktop {

namespace {

std::optional<DesktopEntry> parse(const char* body, const char* locale = "C") {
    return parseDesktopEntry(QStringLiteral("id"), QByteArray("[Desktop Entry]\nType=Application\n") + body,
                             QLatin1String(locale));
}

void write(const QString& folder, const char* name, const QByteArray& body) {
    const QString path = folder + u'/' + QLatin1String(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Desktop Entry]\nType=Application\n" + body);
}

/// The variables that name a locale, as they were before in the end.
class ProcessLocale : public testing::Test {
protected:
    void SetUp() override {
        for (const char* name : names)
            m_before.emplace_back(name, qEnvironmentVariable(name));
    }
    void TearDown() override {
        for (const auto& [name, value] : m_before) {
            if (value.isNull()) {
                qunsetenv(name);
            } else {
                qputenv(name, value.toLocal8Bit());
            }
        }
    }

    static constexpr std::array names{"LC_ALL", "LC_MESSAGES", "LANG"};

private:
    std::vector<std::pair<const char*, QString>> m_before;
};

} // namespace

TEST_F(ProcessLocale, IsTheFirstThatIsSet) {
    qputenv("LC_ALL", "de_DE.UTF-8");
    qputenv("LC_MESSAGES", "fr_FR.UTF-8");
    qputenv("LANG", "pt_BR.UTF-8");
    EXPECT_EQ(DesktopEntries::processLocale(), u"de_DE.UTF-8");
    qputenv("LC_ALL", "");
    EXPECT_EQ(DesktopEntries::processLocale(), u"fr_FR.UTF-8");
    qunsetenv("LC_MESSAGES");
    EXPECT_EQ(DesktopEntries::processLocale(), u"pt_BR.UTF-8");
    qunsetenv("LANG");
    EXPECT_EQ(DesktopEntries::processLocale(), u"C");
}

TEST(DesktopEntry, HasNameAndWindowClass) {
    const auto entry = parse("# comment\n Name = Web Browser \nStartupWMClass=Browser\n");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, u"Web Browser");
    EXPECT_EQ(entry->startupWMClass, u"Browser");
    EXPECT_EQ(entry->id, u"id");
}

TEST(DesktopEntry, PrefersTheMostSpecificLocale) {
    const char* body = "Name=Files\nName[pt]=Ficheiros\nName[pt_BR]=Arquivos\nName[sr@latin]=Datoteke\n";
    EXPECT_EQ(parse(body, "pt_BR.UTF-8")->name, u"Arquivos");
    EXPECT_EQ(parse(body, "pt_PT.UTF-8")->name, u"Ficheiros");
    EXPECT_EQ(parse(body, "sr_RS.UTF-8@latin")->name, u"Datoteke");
    EXPECT_EQ(parse(body, "de_DE")->name, u"Files");
    EXPECT_EQ(parse(body, "C")->name, u"Files");
}

TEST(DesktopEntry, PrefersTheCountryToTheModifier) {
    const char* body = "Name=Files\nName[sr]=Datoteke\nName[sr@latin]=Latinica\nName[sr_RS]=Srbija\n"
                       "Name[sr_ME@latin]=Crna Gora\n";
    EXPECT_EQ(parse(body, "sr_ME.UTF-8@latin")->name, u"Crna Gora");
    EXPECT_EQ(parse(body, "sr_RS.UTF-8@latin")->name, u"Srbija");
    EXPECT_EQ(parse(body, "sr_BA.UTF-8@latin")->name, u"Latinica");
    EXPECT_EQ(parse(body, "sr_BA.UTF-8")->name, u"Datoteke");
}

// As the desktops' own readers do.
TEST(DesktopEntry, TakesTheLastOfAKeyThatComesAgain) {
    EXPECT_EQ(parse("Name=First\nName=Last\n")->name, u"Last");
    EXPECT_EQ(parse("Name=First\n[Other]\nName=Other\n[Desktop Entry]\nName=Last\n")->name, u"Last");
}

TEST(DesktopEntry, ReadsOnlyItsOwnGroup) {
    EXPECT_EQ(parse("Name=App\n[Desktop Action new]\nName=New window\nStartupWMClass=x\n")->name, u"App");
    EXPECT_EQ(parse("Name=App\n[Desktop Action new]\nStartupWMClass=x\n")->startupWMClass, u"");
}

TEST(DesktopEntry, UndoesEscapes) {
    EXPECT_EQ(parse("Name=A\\sB\\\\C\n")->name, u"A B\\C");
}

TEST(DesktopEntry, IsNothingForOtherFiles) {
    EXPECT_FALSE(parse(""));
    EXPECT_FALSE(parse("Name=\n"));
    EXPECT_FALSE(parse("Name=App\nHidden=true\n"));
    EXPECT_FALSE(parseDesktopEntry(QStringLiteral("x"), "[Desktop Entry]\nType=Link\nName=App\n",
                                   QStringLiteral("C")));
    EXPECT_FALSE(parseDesktopEntry(QStringLiteral("x"), "Name=App\nType=Application\n", QStringLiteral("C")));
    EXPECT_FALSE(parseDesktopEntry(QStringLiteral("x"), QByteArray(1000, '\xff'), QStringLiteral("C")));
}

TEST(DesktopEntries, MatchesClassThenId) {
    QTemporaryDir folder;
    write(folder.path(), "org.example.Editor.desktop", "Name=By id\n");
    write(folder.path(), "other.desktop", "Name=By class\nStartupWMClass=editor-window\n");
    write(folder.path(), "sub/inner.desktop", "Name=Inner\n");
    DesktopEntries entries({folder.path()}, QStringLiteral("C"));
    const auto name = [&entries](const char* instance, const char* windowClass) {
        return entries.names()->of(QLatin1String(instance), QLatin1String(windowClass));
    };
    EXPECT_EQ(name("x", "Editor-Window"), u"By class");
    EXPECT_EQ(name("editor-window", "x"), u"By class");
    EXPECT_EQ(name("x", "Org.example.editor"), u"By id");
    EXPECT_EQ(name("org.example.Editor", "editor-window"), u"By class");
    EXPECT_EQ(name("x", "sub-inner"), u"Inner");
    EXPECT_EQ(name("x", "y"), std::nullopt);
    EXPECT_EQ(name("", ""), std::nullopt);
}

TEST(DesktopEntries, MatchesTheClassBeforeTheInstance) {
    QTemporaryDir folder;
    write(folder.path(), "editor.desktop", "Name=Editor\n");
    write(folder.path(), "viewer.desktop", "Name=Viewer\n");
    write(folder.path(), "a.desktop", "Name=Editor by class\nStartupWMClass=edit\n");
    write(folder.path(), "b.desktop", "Name=Viewer by class\nStartupWMClass=view\n");
    DesktopEntries entries({folder.path()}, QStringLiteral("C"));
    EXPECT_EQ(entries.names()->of(QStringLiteral("viewer"), QStringLiteral("editor")), u"Editor");
    EXPECT_EQ(entries.names()->of(QStringLiteral("view"), QStringLiteral("edit")), u"Editor by class");
}

TEST(DesktopEntries, NamesHaveNoControlCharacters) {
    const auto entry = parseDesktopEntry(QStringLiteral("x"),
                                         "[Desktop Entry]\nType=Application\nName=Two\\nlines\n"
                                         "Name[de]=\x1b[31mRot\xe2\x80\xae\n",
                                         QStringLiteral("C"));
    EXPECT_EQ(entry->name, u"Twolines");
    const auto german = parseDesktopEntry(QStringLiteral("x"),
                                          "[Desktop Entry]\nType=Application\nName=Red\n"
                                          "Name[de]=\x1b[31mRot\xe2\x80\xae\n",
                                          QStringLiteral("de_DE.UTF-8"));
    EXPECT_EQ(german->name, u"[31mRot");
}

TEST(DesktopEntries, PrefersTheEarlierFolder) {
    QTemporaryDir user;
    QTemporaryDir system;
    write(user.path(), "app.desktop", "Name=Mine\n");
    write(system.path(), "app.desktop", "Name=Theirs\n");
    DesktopEntries entries({user.path(), QStringLiteral("/nonexistent"), system.path()}, QStringLiteral("C"));
    EXPECT_EQ(entries.names()->of(QString(), QStringLiteral("app")), u"Mine");
}

TEST(DesktopEntries, SeesWhatIsInstalledLater) {
    QTemporaryDir folder;
    DesktopEntries entries({folder.path()}, QStringLiteral("C"));
    const auto before = entries.names();
    EXPECT_EQ(before->of(QString(), QStringLiteral("late")), std::nullopt);
    EXPECT_EQ(entries.names(), before);
    write(folder.path(), "late.desktop", "Name=Late\n");
    // The folder's time stamp may be too coarse to show two changes in a row; a later one is set outright.
    std::filesystem::last_write_time(folder.path().toStdString(),
                                     std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5));
    EXPECT_EQ(entries.names()->of(QString(), QStringLiteral("late")), u"Late");
    EXPECT_EQ(before->of(QString(), QStringLiteral("late")), std::nullopt);
}

} // namespace orvane::freedesktop
