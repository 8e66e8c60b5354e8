#include "OrvanePlatform/freedesktop/DesktopEntries.h"

#include "OrvaneCore/base/PlainText.h"
#include "OrvanePlatform/freedesktop/DesktopEntryKeys.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <system_error>
#include <utility>

namespace orvane::freedesktop {

namespace {

const QLatin1String fileEnding(".desktop");

/// The forms in which a localised key may be given, the best first: lang_COUNTRY@MODIFIER, lang_COUNTRY,
/// lang@MODIFIER, lang.
QStringList localeForms(const QString& locale) {
    const QString modifier = locale.contains(u'@') ? locale.mid(locale.indexOf(u'@')) : QString();
    const QString withoutModifier = locale.left(locale.size() - modifier.size());
    const QString languageAndCountry = withoutModifier.section(u'.', 0, 0);
    const QString language = languageAndCountry.section(u'_', 0, 0);
    QStringList forms{languageAndCountry + modifier, languageAndCountry, language + modifier, language};
    forms.removeDuplicates();
    return forms;
}

/// When the folder was last changed; the earliest time there is where there is no folder.
std::filesystem::file_time_type stampOf(const QString& folder) {
    std::error_code error;
    const auto stamp = std::filesystem::last_write_time(QFileInfo(folder).filesystemFilePath(), error);
    return error ? std::filesystem::file_time_type::min() : stamp;
}

void addFolder(ApplicationNames& names, const QString& folder, const QString& locale) {
    QDirIterator files(folder, {u'*' + fileEnding}, QDir::Files, QDirIterator::Subdirectories);
    QStringList paths;
    while (files.hasNext())
        paths.append(files.next());
    paths.sort();
    for (const QString& path : paths) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        QString id = QDir(folder).relativeFilePath(path).replace(u'/', u'-');
        id.chop(fileEnding.size());
        if (const auto entry = parseDesktopEntry(id, file.readAll(), locale))
            names.add(*entry);
    }
}

} // namespace

std::optional<DesktopEntry> parseDesktopEntry(const QString& id, const QByteArray& contents,
                                              const QString& locale) {
    const QHash<QString, QString> values = readDesktopEntryKeys(contents);
    DesktopEntry entry{
        .id = id, .name = {}, .startupWMClass = values.value(QStringLiteral("StartupWMClass"))};
    for (const QString& form : localeForms(locale)) {
        entry.name = withoutControls(values.value(QStringLiteral("Name[%1]").arg(form)));
        if (!entry.name.isEmpty())
            break;
    }
    if (entry.name.isEmpty())
        entry.name = withoutControls(values.value(QStringLiteral("Name")));
    const bool application = values.value(QStringLiteral("Type")) == u"Application";
    const bool deleted = values.value(QStringLiteral("Hidden")) == u"true";
    if (!application || deleted || entry.name.isEmpty())
        return std::nullopt;
    return entry;
}

DesktopEntries::DesktopEntries(QStringList folders, QString locale)
    : m_folders(std::move(folders))
    , m_locale(std::move(locale)) {}

QStringList DesktopEntries::standardFolders() {
    return QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
}

QString DesktopEntries::processLocale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        QString value = qEnvironmentVariable(variable);
        if (!value.isEmpty())
            return value;
    }
    return QStringLiteral("C");
}

std::shared_ptr<const ApplicationNames> DesktopEntries::names() {
    const std::scoped_lock lock(m_mutex);
    std::vector<std::filesystem::file_time_type> stamps;
    stamps.reserve(static_cast<size_t>(m_folders.size()));
    for (const QString& folder : m_folders)
        stamps.push_back(stampOf(folder));
    if (m_names && stamps == m_stamps)
        return m_names;
    const auto names = std::make_shared<ApplicationNames>();
    for (const QString& folder : m_folders)
        addFolder(*names, folder, m_locale);
    m_stamps = std::move(stamps);
    m_names = names;
    return m_names;
}

std::optional<QString> ApplicationNames::of(const QString& instanceName, const QString& className) const {
    for (const auto* names : {&m_nameByWMClass, &m_nameById}) {
        for (const QString& key : {className.toLower(), instanceName.toLower()}) {
            const auto name = names->constFind(key);
            if (!key.isEmpty() && name != names->constEnd())
                return *name;
        }
    }
    return std::nullopt;
}

void ApplicationNames::add(const DesktopEntry& entry) {
    const QString id = entry.id.toLower();
    if (!m_nameById.contains(id))
        m_nameById.insert(id, entry.name);
    const QString windowClass = entry.startupWMClass.toLower();
    if (!windowClass.isEmpty() && !m_nameByWMClass.contains(windowClass))
        m_nameByWMClass.insert(windowClass, entry.name);
}

} // namespace orvane::freedesktop
