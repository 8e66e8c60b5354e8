#include "OrvanePlatform/freedesktop/AutostartFile.h"

#include "OrvaneCore/base/AtomicFile.h"
#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/freedesktop/DesktopEntryKeys.h"
#include "OrvanePlatform/freedesktop/XdgFolders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

namespace orvane::freedesktop {

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView fileName("com.orvane.app.desktop");

/// One argument of an Exec key, before the escapes of the file. Field codes have no meaning between quotes,
/// so an argument is quoted only where it must be.
QString quotedArgument(const QString& argument) {
    constexpr QLatin1StringView reserved(" \t\n\"'\\><~|&;$*?#()`");
    constexpr QLatin1StringView escapedBetweenQuotes("\"`$\\");
    const bool quotes = std::any_of(argument.begin(), argument.end(),
                                    [&](QChar character) { return reserved.contains(character); });
    const QString mark = quotes ? u"\""_s : QString();
    QString quoted = mark;
    for (const QChar character : argument) {
        if (escapedBetweenQuotes.contains(character))
            quoted += u'\\';
        quoted += character;
        if (character == u'%')
            quoted += u'%';
    }
    return quoted + mark;
}

QString commandOf(const QString& executable) {
    QString argument = quotedArgument(executable);
    // The first word may not have a "=", and GLib looks for a program of that name with "%%" as it stands.
    if (executable.contains(u'=') || executable.contains(u'%'))
        return u"sh -c "_s + quotedArgument(u"exec \"$0\""_s) + u' ' + argument;
    return argument;
}

bool isThere(const QString& program) {
    return QDir::isAbsolutePath(program) ? QFileInfo(program).isFile() && QFileInfo(program).isExecutable()
                                         : !QStandardPaths::findExecutable(program).isEmpty();
}

bool namesOneOf(const QString& desktopList, const QStringList& currentDesktops) {
    const QStringList named = desktopList.split(u';', Qt::SkipEmptyParts);
    return std::any_of(named.begin(), named.end(),
                       [&](const QString& name) { return currentDesktops.contains(name.trimmed()); });
}

/// The first of `folders` that has the file decides, whatever it is there.
bool isStartedFrom(const QStringList& folders) {
    const QStringList currentDesktops =
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts);
    for (const QString& folder : folders) {
        const QFileInfo info(QDir(folder).filePath(fileName));
        if (!info.exists())
            continue;
        QFile file(info.filePath());
        // Not anything but a file: a link to /dev/null is a usual way to mask an entry.
        return info.isFile() && file.open(QIODevice::ReadOnly) &&
               isStartedAtLogin(file.readAll(), currentDesktops);
    }
    return false;
}

} // namespace

bool isStartedAtLogin(const QByteArray& entry, const QStringList& currentDesktops) {
    const QHash<QString, QString> keys = readDesktopEntryKeys(entry);
    if (keys.value(u"Type"_s) != u"Application" || keys.value(u"Exec"_s).isEmpty())
        return false;
    if (keys.value(u"Hidden"_s) == u"true" || keys.value(u"X-GNOME-Autostart-enabled"_s) == u"false")
        return false;
    if (keys.contains(u"OnlyShowIn"_s) && !namesOneOf(keys.value(u"OnlyShowIn"_s), currentDesktops))
        return false;
    if (namesOneOf(keys.value(u"NotShowIn"_s), currentDesktops))
        return false;
    const QString tried = keys.value(u"TryExec"_s);
    return tried.isEmpty() || isThere(tried);
}

QByteArray autostartEntryOf(const QString& executable) {
    // With TryExec an entry that outlives the program does no harm.
    const QString text = u"[Desktop Entry]\n"
                         "Type=Application\n"
                         "Name=Orvane\n"
                         "Comment=Show an AI agent what you mean, on your own screen\n"
                         "Icon=com.orvane.app\n"
                         "Exec=%1\n"
                         "TryExec=%2\n"
                         "Terminal=false\n"
                         "StartupNotify=false\n"_s;
    return text.arg(escapedDesktopEntryValue(commandOf(executable)), escapedDesktopEntryValue(executable))
        .toUtf8();
}

AutostartFile::AutostartFile(QString executable, QStringList folders)
    : m_executable(std::move(executable))
    , m_folders(std::move(folders)) {
    Q_ASSERT(!m_folders.isEmpty());
}

QStringList AutostartFile::standardFolders() {
    QStringList folders = qEnvironmentVariable("XDG_CONFIG_DIRS").split(u':', Qt::SkipEmptyParts);
    folders.removeIf([](const QString& folder) { return !QDir::isAbsolutePath(folder); });
    if (folders.isEmpty())
        folders.append(u"/etc/xdg"_s);
    folders.prepend(configHome());
    for (QString& folder : folders)
        folder = QDir(folder).filePath(u"autostart"_s);
    return folders;
}

bool AutostartFile::isRegistered() const {
    return isStartedFrom(m_folders);
}

void AutostartFile::registerEntry() {
    if (!isThere(m_executable))
        throw PlatformError(u"There is no program %1 any more; start Orvane anew."_s.arg(m_executable));
    replaceUserFile(autostartEntryOf(m_executable));
}

void AutostartFile::unregisterEntry() {
    if (isStartedFrom(m_folders.mid(1))) {
        replaceUserFile("[Desktop Entry]\nType=Application\nName=Orvane\nHidden=true\n");
        return;
    }
    QFile file(userFile());
    if (!file.remove() && (QFileInfo(userFile()).exists() || QFileInfo(userFile()).isSymLink()))
        throw PlatformError(u"The file %1 cannot be removed: %2."_s.arg(userFile(), file.errorString()));
}

QString AutostartFile::userFile() const {
    return QDir(m_folders.first()).filePath(fileName);
}

void AutostartFile::replaceUserFile(const QByteArray& contents) const {
    const QString& folder = m_folders.first();
    if (!QDir().mkpath(folder))
        throw PlatformError(u"The folder %1 cannot be made."_s.arg(folder));
    if (!writeFileAtomically(userFile(), contents))
        throw PlatformError(u"The file %1 cannot be written."_s.arg(userFile()));
}

} // namespace orvane::freedesktop
