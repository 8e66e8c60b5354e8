#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

namespace orvane::freedesktop {

/// The keys of the [Desktop Entry] group of a desktop entry file (Desktop Entry Specification 1.5), localised
/// ones as they stand ("Name[de]"), with their values of type string: the escapes are undone. Of a key that
/// is given twice the last counts, as it does for desktops. Lines that are no key are left out.
QHash<QString, QString> readDesktopEntryKeys(const QByteArray& contents);

/// `value` as it stands in such a file, which readDesktopEntryKeys gives back as it was.
QString escapedDesktopEntryValue(const QString& value);

} // namespace orvane::freedesktop
