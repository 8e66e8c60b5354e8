#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace orvane::freedesktop {

/// One installed application (Desktop Entry Specification 1.5), the parts that name its windows.
struct DesktopEntry {
    /// The file's name relative to its applications folder, '/' as '-', without ".desktop".
    QString id;
    QString name;
    QString startupWMClass;
};

/// Reads the [Desktop Entry] group. `locale` is as in LC_MESSAGES, for example "pt_BR.UTF-8".
/// Nothing when it is not an application with a name, or is marked deleted (Hidden).
std::optional<DesktopEntry> parseDesktopEntry(const QString& id, const QByteArray& contents,
                                              const QString& locale);

/// The names of installed applications by the class of their windows, as they were at one moment. Any thread.
class ApplicationNames {
public:
    /// The name of the application with such windows (the two parts of WM_CLASS): by StartupWMClass, else by
    /// desktop id, letter case ignored. Never by executable: an interpreter is not an application.
    std::optional<QString> of(const QString& instanceName, const QString& className) const;

    /// An entry of a less important folder than all before it: the first name for a key stays.
    void add(const DesktopEntry& entry);

private:
    QHash<QString, QString> m_nameByWMClass;
    QHash<QString, QString> m_nameById;
};

/// The applications that are installed. Read at the first question and again when an applications folder has
/// changed. Any thread.
class DesktopEntries {
public:
    /// `folders` are applications folders, the most important first.
    DesktopEntries(QStringList folders, QString locale);

    /// The folders the XDG Base Directory Specification names, and the locale of this process.
    static QStringList standardFolders();
    static QString processLocale();

    /// The names as they are now. Looks at the folders, so who has many windows to name asks once.
    std::shared_ptr<const ApplicationNames> names();

private:
    const QStringList m_folders;
    const QString m_locale;
    std::mutex m_mutex;
    std::vector<std::filesystem::file_time_type> m_stamps;
    std::shared_ptr<const ApplicationNames> m_names;
};

} // namespace orvane::freedesktop
