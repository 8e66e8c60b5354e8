#pragma once

#include "OrvaneCore/platform/AutostartEntry.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace orvane::freedesktop {

/// Whether a desktop starts the program of this autostart entry, the whole contents of a file. It does not
/// when the entry is hidden, not meant for any of `currentDesktops` (the parts of XDG_CURRENT_DESKTOP),
/// switched off in GNOME's way, without a command, or when what TryExec names is not there.
bool isStartedAtLogin(const QByteArray& entry, const QStringList& currentDesktops);

/// The entry that starts `executable`, an absolute path, with no arguments.
QByteArray autostartEntryOf(const QString& executable);

/// com.orvane.app.desktop in the autostart folders (Desktop Application Autostart Specification 0.5).
class AutostartFile : public AutostartEntry {
public:
    /// `executable`: the absolute path of what is to be started. `folders`: autostart folders, the user's
    /// first, which alone is ever written to; the first that has the file decides. None need exist.
    explicit AutostartFile(QString executable, QStringList folders = standardFolders());

    /// `autostart` in $XDG_CONFIG_HOME and in each of $XDG_CONFIG_DIRS, or where those are unset or no
    /// absolute paths, in ~/.config and /etc/xdg.
    static QStringList standardFolders();

    bool isRegistered() const override;

    /// Replaces the user's file, which is made with its folders where there is none.
    void registerEntry() override;

    /// Removes the user's file. Where a system-wide file would then start the program, the user's becomes one
    /// that hides it.
    void unregisterEntry() override;

private:
    QString userFile() const;
    void replaceUserFile(const QByteArray& contents) const;

    QString m_executable;
    QStringList m_folders;
};

} // namespace orvane::freedesktop
