#include "OrvanePlatform/freedesktop/SecretService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QFileInfo>
#include <QUuid>

namespace orvane::freedesktop {

using namespace Qt::StringLiterals;

namespace {

/// Empty when there is no session bus. Left to itself the bus library would start one of its own then.
QString sessionBusAddress() {
    const QString socket = qEnvironmentVariable("XDG_RUNTIME_DIR") + u"/bus"_s;
    const QString standard = QFileInfo::exists(socket) ? u"unix:path="_s + socket : QString();
    const QString configured = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    return configured.isEmpty() ? standard : configured;
}

/// A connection of its own, closed when it goes.
class Bus {
public:
    explicit Bus(const QString& address)
        : m_connection(QDBusConnection::connectToBus(address, m_name)) {}
    ~Bus() { QDBusConnection::disconnectFromBus(m_name); }
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;

    const QDBusConnection& connection() const { return m_connection; }

private:
    QString m_name = u"orvane-"_s + QUuid::createUuid().toString(QUuid::Id128);
    QDBusConnection m_connection;
};

class Service {
public:
    Service(const QDBusConnection& connection, std::chrono::milliseconds timeout)
        : m_connection(connection)
        , m_timeoutMs(static_cast<int>(timeout.count())) {}

    QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                      const QVariantList& arguments) const {
        QDBusMessage message =
            QDBusMessage::createMethodCall(u"org.freedesktop.secrets"_s, path, interface, method);
        message.setArguments(arguments);
        return m_connection.call(message, QDBus::Block, m_timeoutMs);
    }

private:
    QDBusConnection m_connection;
    int m_timeoutMs;
};

} // namespace

std::optional<QString> secretServiceProblem(std::chrono::milliseconds timeout) {
    const QString address = sessionBusAddress();
    if (address.isEmpty())
        return u"there is no session bus"_s;
    const Bus bus(address);
    if (!bus.connection().isConnected())
        return u"the session bus cannot be reached"_s;

    const Service service(bus.connection(), timeout);
    const QDBusMessage alias = service.call(
        u"/org/freedesktop/secrets"_s, u"org.freedesktop.Secret.Service"_s, u"ReadAlias"_s, {u"default"_s});
    if (alias.type() == QDBusMessage::ErrorMessage)
        return alias.errorMessage();
    const QString collection = alias.arguments().value(0).value<QDBusObjectPath>().path();
    // That is how the service says "none".
    if (collection.isEmpty() || collection == u"/"_s)
        return u"there is no default keyring"_s;

    const QDBusMessage locked = service.call(collection, u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                                             {u"org.freedesktop.Secret.Collection"_s, u"Locked"_s});
    if (locked.type() == QDBusMessage::ErrorMessage)
        return locked.errorMessage();
    if (locked.arguments().value(0).value<QDBusVariant>().variant().toBool())
        return u"the default keyring is locked"_s;
    return std::nullopt;
}

} // namespace orvane::freedesktop
