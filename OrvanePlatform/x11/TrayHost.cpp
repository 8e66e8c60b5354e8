#include "OrvanePlatform/x11/TrayHost.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>

namespace orvane::x11 {

using namespace Qt::StringLiterals;

namespace {

constexpr int answerMs = 300;

bool hasHostOnBus() {
    const QString watcher = u"org.kde.StatusNotifierWatcher"_s;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return false;
    bus.interface()->setTimeout(answerMs);
    // Asking the watcher itself could start one.
    if (!bus.interface()->isServiceRegistered(watcher))
        return false;
    QDBusMessage request = QDBusMessage::createMethodCall(watcher, u"/StatusNotifierWatcher"_s,
                                                          u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    request << watcher << u"IsStatusNotifierHostRegistered"_s;
    const QDBusMessage answer = bus.call(request, QDBus::Block, answerMs);
    return answer.type() == QDBusMessage::ReplyMessage &&
           answer.arguments().value(0).value<QDBusVariant>().variant().toBool();
}

bool hasEmbeddingTray(X11Session& session) {
    try {
        const auto connection = session.connection();
        const QByteArray name = "_NET_SYSTEM_TRAY_S" + QByteArray::number(connection->screenNumber());
        const auto atom = connection->reply<xcb_intern_atom_reply>(
            xcb_intern_atom(connection->raw(), 0, static_cast<uint16_t>(name.size()), name.constData()));
        if (!atom)
            return false;
        const auto owner = connection->reply<xcb_get_selection_owner_reply>(
            xcb_get_selection_owner(connection->raw(), atom->atom));
        return owner && owner->owner != XCB_WINDOW_NONE;
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace

bool hasTrayHost(X11Session& session) {
    return hasEmbeddingTray(session) || hasHostOnBus();
}

} // namespace orvane::x11
