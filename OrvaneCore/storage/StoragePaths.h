#pragma once

#include "OrvaneCore/platform/SettingsStore.h"

#include <QString>

#include <optional>

namespace orvane {

/// Where everything lies:
///
///     <base>                    ~/.orvane, or the folder the user chose
///     <base>/captures           loose pictures
///     <base>/sessions/<id>      one folder a session, of every kind
///     <base>/sessions/latest    link to the session that was finished last
///     <base>/vlm-daemon.json    where the description daemon tells its address
///
/// Every call reads the setting afresh. All paths are absolute. Any thread.
class StoragePaths {
public:
    /// The store must outlive this object. `homeDirectory` is an absolute path without a slash at its end.
    StoragePaths(SettingsStore& settings, QString homeDirectory);

    QString baseDir() const;
    QString capturesDir() const;
    QString sessionsDir() const;
    /// The folder of a session, whether or not there is one.
    QString sessionDir(const QString& id) const;
    QString latestSessionLink() const;
    QString vlmDaemonInfo() const;

    /// The path with the home folder's path at its beginning shortened to "~".
    QString displayPath(const QString& path) const;

    /// Creates the folders of captures and of sessions with all above them, in silence where that fails.
    void ensureDirectories() const;

    /// Stores the base folder as given (nothing: back to the default) and makes its folders. Data under the
    /// former base folder stays there. An empty text counts as no choice; "~" means nothing special.
    void setBaseDirectory(const std::optional<QString>& path);

private:
    SettingsStore& m_settings;
    QString m_homeDirectory;
};

} // namespace orvane
