#include "OrvanePlatform/freedesktop/JsonSettingsStore.h"
#include "tests/unit/storage/StorageFixture.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLockFile>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane::freedesktop {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class JsonSettings : public StorageFixture {
protected:
    QString file() const { return under(QStringLiteral("config/orvane/settings.json")); }
    QString folder() const { return under(QStringLiteral("config/orvane")); }

    QByteArray bytes() const {
        QFile settings(file());
        EXPECT_TRUE(settings.open(QIODevice::ReadOnly));
        return settings.readAll();
    }

    QJsonObject content() const { return QJsonDocument::fromJson(bytes()).object(); }

    QStringList entries() const {
        return QDir(folder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                        QDir::NoDotAndDotDot);
    }

    QStringList setAside() const {
        return entries().filter(
            QRegularExpression(QStringLiteral("^settings\\.json\\.damaged-\\d{8}-\\d{6}\\.\\d{3}$")));
    }

    static unsigned modeOf(const QString& path) {
        struct stat status {};
        EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0);
        return status.st_mode & 0777U;
    }

    /// Standard error of a piece of work.
    static std::string told(const std::function<void()>& work) {
        ::testing::internal::CaptureStderr();
        work();
        return ::testing::internal::GetCapturedStderr();
    }

    static std::ptrdiff_t lines(const std::string& text) {
        return std::count(text.begin(), text.end(), '\n');
    }

    /// Runs in a process of its own, which ends without any cleaning up.
    static pid_t inChild(const std::function<void()>& work) {
        const pid_t child = ::fork();
        if (child == 0) {
            work();
            ::_exit(0);
        }
        EXPECT_GT(child, 0);
        return child;
    }

    static void waitFor(pid_t child) {
        int status = -1;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }

    const QString m_key = QStringLiteral("VideoFps");
};

TEST_F(JsonSettings, TheDefaultPathIsInTheConfigurationFolder) {
    qputenv("XDG_CONFIG_HOME", "/some/config");
    EXPECT_EQ(JsonSettingsStore::defaultPath(), QStringLiteral("/some/config/orvane/settings.json"));
    for (const char* ignored : {"", "relative/config", "~/config"}) {
        qputenv("XDG_CONFIG_HOME", ignored);
        EXPECT_EQ(JsonSettingsStore::defaultPath(), under(QStringLiteral(".config/orvane/settings.json")));
    }
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(JsonSettingsStore::defaultPath(), under(QStringLiteral(".config/orvane/settings.json")));
}

TEST_F(JsonSettings, AMissingFileIsEmptyAndStaysMissing) {
    const JsonSettingsStore store(file());
    EXPECT_EQ(told([&] { EXPECT_TRUE(store.value(m_key).isUndefined()); }), "");
    EXPECT_FALSE(isThere(folder()));
}

TEST_F(JsonSettings, TheFirstWriteMakesTheFileForTheUserAlone) {
    JsonSettingsStore store(file());
    store.setValue(m_key, 24);
    EXPECT_EQ(content(), (QJsonObject{{m_key, 24}}));
    EXPECT_EQ(modeOf(file()), 0600U);
    EXPECT_EQ(modeOf(folder()), 0700U);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("settings.json")});
}

TEST_F(JsonSettings, EveryKindOfValueComesBack) {
    JsonSettingsStore store(file());
    const QJsonObject values{
        {QStringLiteral("Text"), QStringLiteral("Füße 日本 \"\\\n \U0001F600")},
        {QStringLiteral("Empty"), QString()},
        {QStringLiteral("Whole"), qint64(9007199254740993)},
        {QStringLiteral("Fraction"), 1.25},
        {QStringLiteral("Switch"), false},
        {QStringLiteral("Nothing"), QJsonValue::Null},
        {QStringLiteral("List"), QJsonArray{1, QStringLiteral("b")}},
        {QStringLiteral("Map"), QJsonObject{{QStringLiteral("a"), 1}}},
        {QStringLiteral("Schlüssel"), 1},
    };
    for (auto it = values.begin(); it != values.end(); ++it)
        store.setValue(it.key(), it.value());
    const JsonSettingsStore other(file());
    for (auto it = values.begin(); it != values.end(); ++it)
        EXPECT_EQ(other.value(it.key()), it.value()) << it.key().toStdString();
    EXPECT_EQ(content(), values);
}

TEST_F(JsonSettings, AReadSeesWhatAnyoneWroteLast) {
    JsonSettingsStore store(file());
    store.setValue(m_key, 1);
    writeFile(file(), R"({"VideoFps": 2})");
    EXPECT_EQ(store.value(m_key), QJsonValue(2));
    JsonSettingsStore(file()).setValue(m_key, 3);
    EXPECT_EQ(store.value(m_key), QJsonValue(3));
}

TEST_F(JsonSettings, KeysItDoesNotKnowAreKept) {
    writeFile(file(), R"({"FromTheFuture": {"deep": [1, {"x": null}]}, "VideoFps": 1})");
    JsonSettingsStore(file()).setValue(m_key, 2);
    EXPECT_EQ(
        content(),
        QJsonDocument::fromJson(R"({"FromTheFuture": {"deep": [1, {"x": null}]}, "VideoFps": 2})").object());
}

TEST_F(JsonSettings, AnUndefinedValueRemovesTheKey) {
    writeFile(file(), R"({"A": 1, "VideoFps": 1})");
    JsonSettingsStore store(file());
    store.setValue(m_key, QJsonValue::Undefined);
    EXPECT_EQ(content(), (QJsonObject{{QStringLiteral("A"), 1}}));
    store.setValue(QStringLiteral("NeverThere"), QJsonValue::Undefined);
    EXPECT_EQ(content(), (QJsonObject{{QStringLiteral("A"), 1}}));
}

TEST_F(JsonSettings, AValueThatIsThereAlreadyIsNotWrittenAgain) {
    writeFile(file(), R"({ "VideoFps" : 1 })");
    JsonSettingsStore(file()).setValue(m_key, 1);
    EXPECT_EQ(bytes(), QByteArray(R"({ "VideoFps" : 1 })"));
}

TEST_F(JsonSettings, AWriteTakesAwayTheRightsOfOthers) {
    writeFile(file(), "{}");
    ASSERT_EQ(::chmod(QFile::encodeName(file()).constData(), 0644), 0);
    JsonSettingsStore(file()).setValue(m_key, 1);
    EXPECT_EQ(modeOf(file()), 0600U);
}

TEST_F(JsonSettings, AFileKeptElsewhereThroughALinkStaysThere) {
    writeFile(under(QStringLiteral("dotfiles/settings.json")), "{}");
    makeFolder(folder());
    makeLink(under(QStringLiteral("dotfiles/settings.json")), file());
    JsonSettingsStore(file()).setValue(m_key, 5);
    EXPECT_TRUE(QFileInfo(file()).isSymLink());
    EXPECT_EQ(content(), (QJsonObject{{m_key, 5}}));
}

struct Damage {
    std::string name;
    QByteArray bytes;
};

std::ostream& operator<<(std::ostream& out, const Damage& damage) {
    return out << damage.name;
}

class DamagedJsonSettings : public JsonSettings, public ::testing::WithParamInterface<Damage> {};

TEST_P(DamagedJsonSettings, AreSetAsideByTheFirstRead) {
    writeFile(file(), GetParam().bytes);
    const JsonSettingsStore store(file());
    const std::string log = told([&] {
        EXPECT_TRUE(store.value(m_key).isUndefined());
        EXPECT_TRUE(store.value(m_key).isUndefined());
    });
    EXPECT_THAT(log, StartsWith("orvane: "));
    EXPECT_THAT(log, HasSubstr("settings.json.damaged-"));
    EXPECT_EQ(lines(log), 1);
    EXPECT_FALSE(isThere(file()));
    ASSERT_EQ(setAside().size(), 1);
    EXPECT_EQ(QFileInfo(folder() + QLatin1Char('/') + setAside().front()).size(), GetParam().bytes.size());
}

TEST_P(DamagedJsonSettings, AreSetAsideByAWriteWhichThenSucceeds) {
    writeFile(file(), GetParam().bytes);
    const std::string log = told([&] { JsonSettingsStore(file()).setValue(m_key, 24); });
    EXPECT_EQ(lines(log), 1);
    EXPECT_EQ(setAside().size(), 1);
    EXPECT_EQ(content(), (QJsonObject{{m_key, 24}}));
}

std::vector<Damage> kindsOfDamage() {
    return {
        {"Empty", QByteArray()},
        {"Array", "[1, 2]"},
        {"Text", "\"text\""},
        {"Cut", "{\"VideoFps\": 24"},
        {"Twice", "{} {}"},
        {"NotUtf8", "{\"VideoFps\": \"\xFF\xFE\"}"},
        {"ZeroBytes", QByteArray(4, '\0')},
        {"TooDeep", "{\"a\":" + QByteArray(100'000, '[')},
        {"TooLarge", "{\"a\": \"" + QByteArray(17 << 20, 'x') + "\"}"},
    };
}

std::string nameOfDamage(const ::testing::TestParamInfo<Damage>& damage) {
    return damage.param.name;
}

INSTANTIATE_TEST_SUITE_P(Kinds, DamagedJsonSettings, ::testing::ValuesIn(kindsOfDamage()), nameOfDamage);

TEST_F(JsonSettings, ALargeFileIsRead) {
    writeFile(file(), R"({"VideoFps": 7, "Other": ")" + QByteArray(5 << 20, 'x') + "\"}");
    JsonSettingsStore store(file());
    EXPECT_EQ(store.value(m_key), QJsonValue(7));
    store.setValue(m_key, 8);
    EXPECT_EQ(content().value(QStringLiteral("Other")).toString().size(), 5 << 20);
}

TEST_F(JsonSettings, DamagedFilesOfDifferentMomentsAreAllKept) {
    JsonSettingsStore store(file());
    for (int i = 0; i < 3; ++i) {
        writeFile(file(), QByteArray::number(i));
        told([&] { EXPECT_TRUE(store.value(m_key).isUndefined()); });
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_EQ(setAside().size(), 3);
}

TEST_F(JsonSettings, ManyReadersOfADamagedFileSetItAsideOnce) {
    writeFile(file(), "damaged");
    const std::string log = told([&] {
        std::vector<std::thread> readers;
        readers.reserve(4);
        for (int i = 0; i < 4; ++i) {
            readers.emplace_back([&] {
                const JsonSettingsStore store(file());
                EXPECT_TRUE(store.value(m_key).isUndefined());
            });
        }
        for (std::thread& reader : readers)
            reader.join();
    });
    EXPECT_EQ(lines(log), 1);
    EXPECT_EQ(setAside().size(), 1);
}

TEST_F(JsonSettings, AFileThatCannotBeReadIsToldOnceAndNeverReplaced) {
    makeFolder(file() + QStringLiteral("/inside"));
    JsonSettingsStore store(file());
    const std::string reading = told([&] {
        EXPECT_TRUE(store.value(m_key).isUndefined());
        EXPECT_TRUE(store.value(m_key).isUndefined());
    });
    EXPECT_EQ(lines(reading), 1);
    const std::string writing = told([&] { store.setValue(m_key, 1); });
    EXPECT_THAT(writing, StartsWith("orvane: the setting VideoFps was not stored in "));
    EXPECT_EQ(lines(writing), 1);
    EXPECT_TRUE(QFileInfo(file() + QStringLiteral("/inside")).isDir());
}

TEST_F(JsonSettings, AFileThatCannotBeReadAgainIsToldAgain) {
    const JsonSettingsStore store(file());
    const auto reading = [&] { return lines(told([&] { EXPECT_TRUE(store.value(m_key).isUndefined()); })); };
    makeFolder(file());
    EXPECT_EQ(reading(), 1);
    EXPECT_EQ(reading(), 0);
    ASSERT_TRUE(QDir().rmdir(file()));
    EXPECT_EQ(reading(), 0);
    makeFolder(file());
    EXPECT_EQ(reading(), 1);
}

TEST_F(JsonSettings, ANamedPipeInItsPlaceDoesNotHang) {
    makeFolder(folder());
    ASSERT_EQ(::mkfifo(QFile::encodeName(file()).constData(), 0600), 0);
    JsonSettingsStore store(file());
    const std::string log = told([&] {
        EXPECT_TRUE(store.value(m_key).isUndefined());
        store.setValue(m_key, 1);
    });
    EXPECT_EQ(lines(log), 2);
    EXPECT_TRUE(isThere(file()));
}

TEST_F(JsonSettings, AFolderThatCannotBeMadeIsToldInOneLine) {
    writeFile(under(QStringLiteral("config")));
    JsonSettingsStore store(file());
    const std::string log = told([&] { store.setValue(m_key, 1); });
    EXPECT_THAT(log, StartsWith("orvane: the setting VideoFps was not stored in "));
    EXPECT_EQ(lines(log), 1);
    EXPECT_TRUE(store.value(m_key).isUndefined());
}

TEST_F(JsonSettings, AWriteWithoutItsTurnIsGivenUpInTime) {
    writeFile(file(), R"({"VideoFps": 1})");
    QLockFile held(file() + QStringLiteral(".lock"));
    ASSERT_TRUE(held.tryLock(0));
    JsonSettingsStore store(file());
    QElapsedTimer timer;
    timer.start();
    const std::string log = told([&] { store.setValue(m_key, 2); });
    EXPECT_LT(timer.elapsed(), 10'000);
    EXPECT_EQ(lines(log), 1);
    EXPECT_EQ(store.value(m_key), QJsonValue(1));
    held.unlock();
    store.setValue(m_key, 3);
    EXPECT_EQ(store.value(m_key), QJsonValue(3));
}

TEST_F(JsonSettings, TheLockOfADeadProcessDoesNotStandInTheWay) {
    makeFolder(folder());
    waitFor(inChild([this] {
        auto* lock = new QLockFile(file() + QStringLiteral(".lock"));
        ::_exit(lock->tryLock(0) ? 0 : 1);
    }));
    ASSERT_TRUE(isThere(file() + QStringLiteral(".lock")));
    EXPECT_EQ(told([&] { JsonSettingsStore(file()).setValue(m_key, 1); }), "");
    EXPECT_EQ(content(), (QJsonObject{{m_key, 1}}));
}

TEST_F(JsonSettings, ALockFileThatNamesNobodyDoesNotStandInTheWay) {
    writeFile(file() + QStringLiteral(".lock"), QByteArray());
    EXPECT_EQ(told([&] { JsonSettingsStore(file()).setValue(m_key, 1); }), "");
    EXPECT_EQ(content(), (QJsonObject{{m_key, 1}}));
}

/// Writes keys of its own, each once, with pauses in which others can write theirs.
void writeKeys(SettingsStore& store, const QString& prefix, int count) {
    for (int i = 0; i < count; ++i) {
        store.setValue(prefix + QString::number(i), i);
        std::this_thread::sleep_for(std::chrono::milliseconds(6));
    }
}

TEST_F(JsonSettings, ThreadsLoseNothingOfEachOther) {
    JsonSettingsStore shared(file());
    std::atomic<bool> done = false;
    std::thread reader([&] {
        while (!done) {
            // A reader that met a half-written file would set it aside.
            EXPECT_TRUE(shared.value(m_key).isUndefined());
        }
    });
    std::vector<std::thread> writers;
    writers.reserve(4);
    for (int i = 0; i < 4; ++i) {
        writers.emplace_back([&, i] {
            JsonSettingsStore own(file());
            writeKeys(i % 2 == 0 ? static_cast<SettingsStore&>(shared) : own, QStringLiteral("T%1_").arg(i),
                      20);
        });
    }
    for (std::thread& writer : writers)
        writer.join();
    done = true;
    reader.join();
    EXPECT_EQ(content().size(), 80);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("settings.json")});
}

TEST_F(JsonSettings, ProcessesLoseNothingOfEachOther) {
    std::vector<pid_t> children;
    children.reserve(3);
    for (int i = 0; i < 3; ++i) {
        children.push_back(inChild([this, i] {
            JsonSettingsStore store(file());
            writeKeys(store, QStringLiteral("P%1_").arg(i), 25);
        }));
    }
    for (const pid_t child : children)
        waitFor(child);
    EXPECT_EQ(content().size(), 75);
    EXPECT_EQ(entries(), QStringList{QStringLiteral("settings.json")});
}

} // namespace
} // namespace orvane::freedesktop
