// A tray of the kind that shows icons and menus it gets over D-Bus (StatusNotifier), as far as tests need
// one. It obeys commands on its standard input, one a line, and answers each with one line of JSON:
//   items          the bus names of the icons
//   menu           the titles of the first icon's menu, disabled ones in parentheses, checked ones with "*"
//   tooltip        the title of its tooltip
//   click TITLE    chooses that row of the menu as it was last listed
// With --without-host it takes icons and says that nobody shows them.
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSocketNotifier>
#include <QStringList>
#include <QVariantMap>

#include <cstdio>
#include <iostream>
#include <string>

#include <unistd.h>

namespace {

using namespace Qt::StringLiterals;

const QString watcherName = u"org.kde.StatusNotifierWatcher"_s;
const QString watcherPath = u"/StatusNotifierWatcher"_s;
const QString itemInterface = u"org.kde.StatusNotifierItem"_s;
const QString menuInterface = u"com.canonical.dbusmenu"_s;
const QString propertiesInterface = u"org.freedesktop.DBus.Properties"_s;

class Watcher : public QDBusVirtualObject {
public:
    explicit Watcher(bool hasHost)
        : m_hasHost(hasHost) {}

    QStringList items;

    // Clients look up what they may ask for.
    QString introspect(const QString& /*path*/) const override {
        return u"<interface name='org.kde.StatusNotifierWatcher'>"
               "<method name='RegisterStatusNotifierItem'><arg type='s' direction='in'/></method>"
               "<property name='RegisteredStatusNotifierItems' type='as' access='read'/>"
               "<property name='IsStatusNotifierHostRegistered' type='b' access='read'/>"
               "<property name='ProtocolVersion' type='i' access='read'/>"
               "</interface>"_s;
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const QVariantList arguments = message.arguments();
        if (message.member() == u"RegisterStatusNotifierItem") {
            // What is given is a bus name, or the path of the item on the sender's connection.
            const QString name = arguments.value(0).toString();
            items << (name.startsWith(u'/') ? message.service() : name);
            connection.send(message.createReply());
            return true;
        }
        if (message.member() == u"Get") {
            const QString property = arguments.value(1).toString();
            QVariant value;
            if (property == u"IsStatusNotifierHostRegistered") {
                value = m_hasHost;
            } else if (property == u"ProtocolVersion") {
                value = 0;
            } else if (property == u"RegisteredStatusNotifierItems") {
                value = items;
            }
            connection.send(message.createReply(QVariant::fromValue(QDBusVariant(value))));
            return true;
        }
        return false;
    }

private:
    bool m_hasHost;
};

class Host {
public:
    explicit Host(Watcher& watcher)
        : m_watcher(watcher) {}

    QJsonArray obey(const QString& line) {
        const QString command = line.section(u' ', 0, 0);
        if (command == u"items")
            return QJsonArray::fromStringList(m_watcher.items);
        if (m_watcher.items.isEmpty())
            return {u"no item"_s};
        if (command == u"menu")
            return listMenu();
        if (command == u"tooltip")
            return {toolTip()};
        if (command == u"click")
            return click(line.section(u' ', 1));
        return {u"unknown command"_s};
    }

private:
    static QDBusMessage call(const QDBusMessage& request) {
        return QDBusConnection::sessionBus().call(request, QDBus::BlockWithGui, 5000);
    }

    QVariant property(const QString& name) const {
        QDBusMessage request = QDBusMessage::createMethodCall(
            m_watcher.items.constFirst(), u"/StatusNotifierItem"_s, propertiesInterface, u"Get"_s);
        request << itemInterface << name;
        return call(request).arguments().value(0).value<QDBusVariant>().variant();
    }

    QDBusMessage menuRequest(const QString& method) const {
        const auto path = property(u"Menu"_s).value<QDBusObjectPath>();
        return QDBusMessage::createMethodCall(m_watcher.items.constFirst(), path.path(), menuInterface,
                                              method);
    }

    QString toolTip() const {
        const auto packed = property(u"ToolTip"_s).value<QDBusArgument>();
        QString icon;
        QString title;
        packed.beginStructure();
        packed >> icon;
        packed.beginArray();
        while (!packed.atEnd()) {
            int width = 0;
            int height = 0;
            QByteArray bytes;
            packed.beginStructure();
            packed >> width >> height >> bytes;
            packed.endStructure();
        }
        packed.endArray();
        packed >> title;
        return title;
    }

    QJsonArray listMenu() {
        QDBusMessage show = menuRequest(u"AboutToShow"_s);
        show << 0;
        call(show);
        QDBusMessage request = menuRequest(u"GetLayout"_s);
        request << 0 << -1 << QStringList();
        const QDBusMessage answer = call(request);
        m_ids.clear();
        QJsonArray titles;
        if (answer.arguments().size() > 1)
            readRow(answer.arguments().at(1).value<QDBusArgument>(), {}, titles);
        return titles;
    }

    /// A row is (id, properties, rows below).
    void readRow(const QDBusArgument& packed, const QString& above, QJsonArray& titles) {
        int id = 0;
        QVariantMap properties;
        QString title;
        packed.beginStructure();
        packed >> id >> properties;
        if (id != 0) {
            title = above + properties.value(u"label"_s).toString();
            m_ids.insert(title, id);
            titles << shown(title, properties);
        }
        packed.beginArray();
        while (!packed.atEnd()) {
            QDBusVariant row;
            packed >> row;
            readRow(row.variant().value<QDBusArgument>(), id == 0 ? QString() : title + u" > "_s, titles);
        }
        packed.endArray();
        packed.endStructure();
    }

    static QString shown(const QString& title, const QVariantMap& properties) {
        if (properties.value(u"type"_s) == u"separator"_s)
            return u"---"_s;
        const bool isEnabled = properties.value(u"enabled"_s, true).toBool();
        const bool isChecked = properties.value(u"toggle-state"_s, 0).toInt() == 1;
        const QString marked = isChecked ? title + u'*' : title;
        return isEnabled ? marked : u'(' + marked + u')';
    }

    QJsonArray click(const QString& title) const {
        if (!m_ids.contains(title))
            return {u"no such row"_s};
        QDBusMessage request = menuRequest(u"Event"_s);
        request << m_ids.value(title) << u"clicked"_s << QVariant::fromValue(QDBusVariant(0)) << 0U;
        call(request);
        return {u"clicked"_s};
    }

    Watcher& m_watcher;
    QHash<QString, int> m_ids;
};

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    Watcher watcher(!QCoreApplication::arguments().contains(u"--without-host"_s));
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.registerVirtualObject(watcherPath, &watcher);
    if (!bus.registerService(watcherName)) {
        std::fputs("tray-host: no bus, or there is another tray\n", stderr);
        return 1;
    }
    Host host(watcher);
    std::puts("ready");
    std::fflush(stdout);
    const QSocketNotifier commands(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&commands, &QSocketNotifier::activated, [&host] {
        std::string line;
        if (!std::getline(std::cin, line))
            std::exit(0);
        const QJsonDocument answer(host.obey(QString::fromStdString(line)));
        std::puts(answer.toJson(QJsonDocument::Compact).constData());
        std::fflush(stdout);
    });
    return QCoreApplication::exec();
}
