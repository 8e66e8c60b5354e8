#include "OrvanePlatform/freedesktop/KeyringSecretStore.h"

#include "tests/support/Eventually.h"
#include "tests/support/VirtualDesktop.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <thread>
#include <vector>

#include <unistd.h>

namespace orvane::freedesktop {
namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using test::eventually;
using testing::HasSubstr;

const QString program = u"com.orvane.app"_s;
const QString key = u"mcpHttpToken"_s;
const QString serviceName = u"org.freedesktop.secrets"_s;
const QString servicePath = u"/org/freedesktop/secrets"_s;
const QString serviceInterface = u"org.freedesktop.Secret.Service"_s;

class KeyringTest : public testing::Test {
public:
    ~KeyringTest() override {
        QDBusConnection::disconnectFromBus(u"test"_s);
        m_daemon.terminate();
        m_daemon.waitForFinished();
    }

protected:
    /// The desktop's keyring daemon, with a keyring of its own that is open.
    void startKeyring() {
        startDaemon({u"--unlock"_s});
        m_daemon.write("password");
        ASSERT_TRUE(m_daemon.waitForBytesWritten());
        m_daemon.closeWriteChannel();
        ASSERT_TRUE(eventually([this] { return !defaultKeyring().isEmpty() && !isLocked(); }, 30'000));
    }

    void startDaemon(const QStringList& options = {}) {
        m_daemon.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // When it ends it asks its whole process group to end.
        m_daemon.setChildProcessModifier([] { ::setsid(); });
        m_daemon.start(u"gnome-keyring-daemon"_s,
                       QStringList{u"--foreground"_s, u"--components=secrets"_s} + options);
    }

    QDBusMessage ask(const QString& path, const QString& interface, const QString& method,
                     const QVariantList& arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(serviceName, path, interface, method);
        message.setArguments(arguments);
        return m_bus.call(message);
    }

    QString defaultKeyring() {
        const QString path = ask(servicePath, serviceInterface, u"ReadAlias"_s, {u"default"_s})
                                 .arguments()
                                 .value(0)
                                 .value<QDBusObjectPath>()
                                 .path();
        return path == u"/"_s ? QString() : path;
    }

    bool isLocked() {
        return ask(defaultKeyring(), u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                   {u"org.freedesktop.Secret.Collection"_s, u"Locked"_s})
            .arguments()
            .value(0)
            .value<QDBusVariant>()
            .variant()
            .toBool();
    }

    void lockKeyring() {
        ask(servicePath, serviceInterface, u"Lock"_s,
            {QVariant::fromValue(QList<QDBusObjectPath>{QDBusObjectPath(defaultKeyring())})});
        ASSERT_TRUE(eventually([this] { return isLocked(); }));
    }

    /// How many secrets of this program and key the keyring has.
    qsizetype secretsInKeyring() {
        qDBusRegisterMetaType<QMap<QString, QString>>();
        const QDBusMessage found =
            ask(servicePath, serviceInterface, u"SearchItems"_s,
                {QVariant::fromValue(QMap<QString, QString>{{u"server"_s, program}, {u"user"_s, key}})});
        qsizetype count = 0;
        for (const QVariant& paths : found.arguments())
            count += qdbus_cast<QList<QDBusObjectPath>>(paths).size();
        return count;
    }

    QString file() const { return m_desktop.home() + u"/.local/share/orvane/secrets.json"_s; }

    /// Standard error of a piece of work.
    static std::string told(const std::function<void()>& work) {
        testing::internal::CaptureStderr();
        work();
        return testing::internal::GetCapturedStderr();
    }

    /// Stores and reads back by the file alone, with one line that tells why.
    void expectTheFile(KeyringSecretStore& store, const char* reason) {
        std::optional<QString> secret;
        const std::string log = told([&] {
            EXPECT_EQ(store.get(key), std::nullopt);
            EXPECT_TRUE(store.set(key, u"in the file"_s));
            secret = store.get(key);
        });
        EXPECT_EQ(secret, u"in the file"_s);
        EXPECT_THAT(log, HasSubstr("orvane: the desktop's keyring does not serve ("));
        EXPECT_THAT(log, HasSubstr(reason));
        EXPECT_THAT(log, HasSubstr("); secrets are kept in " + file().toStdString() + "\n"));
        EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
        EXPECT_EQ(QFile::permissions(file()) & ~QFileDevice::Permissions(0x7000),
                  QFileDevice::ReadUser | QFileDevice::WriteUser);
        EXPECT_TRUE(store.remove(key));
        EXPECT_EQ(store.get(key), std::nullopt);
    }

    test::VirtualDesktop m_desktop{{u"--no-window-manager"_s, u"--no-compositor"_s}};
    int m_argc = 1;
    std::array<char*, 2> m_argv{const_cast<char*>("keyring-test"), nullptr};
    QCoreApplication m_application{m_argc, m_argv.data()};
    QDBusConnection m_bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"test"_s);
    QProcess m_daemon;
};

TEST_F(KeyringTest, KeepsSecretsInTheDesktopsKeyring) {
    startKeyring();
    const std::string log = told([this] {
        KeyringSecretStore store(program, file());
        EXPECT_EQ(store.get(key), std::nullopt);
        EXPECT_TRUE(store.set(key, u"first 日本"_s));
        EXPECT_EQ(store.get(key), u"first 日本"_s);
        EXPECT_TRUE(store.set(key, u"second"_s));
        EXPECT_EQ(store.get(key), u"second"_s);
        EXPECT_EQ(secretsInKeyring(), 1);

        EXPECT_EQ(KeyringSecretStore(program, file()).get(key), u"second"_s);
        EXPECT_EQ(KeyringSecretStore(u"com.example.other"_s, file()).get(key), std::nullopt);
        EXPECT_EQ(store.get(u"other"_s), std::nullopt);

        EXPECT_TRUE(store.remove(key));
        EXPECT_EQ(store.get(key), std::nullopt);
        EXPECT_EQ(secretsInKeyring(), 0);
        EXPECT_TRUE(store.remove(key));
    });
    EXPECT_EQ(log, "");
    EXPECT_FALSE(QFileInfo::exists(file()));
}

TEST_F(KeyringTest, TakesOverWhatTheFileHad) {
    startKeyring();
    ASSERT_TRUE(FileSecretStore(file()).set(key, u"old"_s));
    KeyringSecretStore store(program, file());
    EXPECT_EQ(store.get(key), u"old"_s);
    EXPECT_TRUE(store.set(key, u"new"_s));
    EXPECT_EQ(store.get(key), u"new"_s);
    EXPECT_EQ(FileSecretStore(file()).get(key), std::nullopt);
}

TEST_F(KeyringTest, RemovesFromBothPlaces) {
    startKeyring();
    KeyringSecretStore store(program, file());
    ASSERT_TRUE(store.set(key, u"in the keyring"_s));
    ASSERT_TRUE(FileSecretStore(file()).set(key, u"in the file"_s));
    EXPECT_TRUE(store.remove(key));
    EXPECT_EQ(store.get(key), std::nullopt);
}

TEST_F(KeyringTest, UsesTheFileWhereNoServiceIs) {
    QElapsedTimer timer;
    timer.start();
    KeyringSecretStore store(program, file());
    expectTheFile(store, "org.freedesktop.secrets");
    EXPECT_LT(timer.elapsed(), 1900);
}

TEST_F(KeyringTest, UsesTheFileWhereNoBusIs) {
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    KeyringSecretStore standard(program, file());
    expectTheFile(standard, "org.freedesktop.secrets");

    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_desktop.home()));
    KeyringSecretStore none(program, file());
    expectTheFile(none, "there is no session bus");

    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    KeyringSecretStore dead(program, file());
    expectTheFile(dead, "the session bus cannot be reached");
}

TEST_F(KeyringTest, UsesTheFileRatherThanAskForAPassword) {
    startKeyring();
    KeyringSecretStore store(program, file());
    ASSERT_TRUE(store.set(key, u"in the keyring"_s));
    lockKeyring();
    QElapsedTimer timer;
    timer.start();
    KeyringSecretStore later(program, file());
    expectTheFile(later, "the default keyring is locked");
    EXPECT_LT(timer.elapsed(), 1900);
    EXPECT_EQ(secretsInKeyring(), 1);
}

TEST_F(KeyringTest, UsesTheFileWhereNoKeyringIsTheDefault) {
    startDaemon();
    ASSERT_TRUE(eventually([this] { return m_bus.interface()->isServiceRegistered(serviceName); }, 30'000));
    ASSERT_EQ(defaultKeyring(), QString());
    KeyringSecretStore store(program, file());
    expectTheFile(store, "there is no default keyring");
}

TEST_F(KeyringTest, UsesTheFileOnceTheServiceHasGone) {
    startKeyring();
    KeyringSecretStore store(program, file());
    ASSERT_TRUE(store.set(key, u"in the keyring"_s));
    m_daemon.terminate();
    ASSERT_TRUE(m_daemon.waitForFinished());
    expectTheFile(store, "org.freedesktop.secrets");
}

/// Takes every call and answers none.
class Silence final : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage&, const QDBusConnection&) override { return true; }
};

TEST_F(KeyringTest, UsesTheFileWhereTheServiceDoesNotAnswer) {
    Silence silence;
    ASSERT_TRUE(m_bus.registerVirtualObject(servicePath, &silence, QDBusConnection::SubPath));
    ASSERT_TRUE(m_bus.registerService(serviceName));
    QElapsedTimer timer;
    timer.start();
    KeyringSecretStore store(program, file(), 500ms);
    expectTheFile(store, "");
    // It is waited for once, not at every one of the five calls.
    EXPECT_GE(timer.elapsed(), 450);
    EXPECT_LT(timer.elapsed(), 1400);
    m_bus.unregisterObject(servicePath);
}

TEST_F(KeyringTest, ServesSeveralThreads) {
    startKeyring();
    KeyringSecretStore store(program, file());
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            const QString own = u"key %1"_s.arg(i);
            EXPECT_TRUE(store.set(own, own));
            EXPECT_EQ(store.get(own), own);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_FALSE(QFileInfo::exists(file()));
}

} // namespace
} // namespace orvane::freedesktop
