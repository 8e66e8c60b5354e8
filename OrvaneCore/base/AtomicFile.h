#pragma once

#include <QByteArrayView>
#include <QFileDevice>
#include <QString>

#include <optional>

namespace orvane {

/// Writes a whole file so that a reader of `path` sees either what stood there before or all of the bytes.
/// The bytes go to a hidden file of a unique name in the same directory, which then takes the place of
/// `path`; a symbolic link at `path` is replaced, not followed. The bytes are not forced to the disk: they
/// survive the end of the process, not a power cut. The directory must exist. False when the file cannot be
/// written, and then nothing has changed. With `permissions` the file has these from its first moment on,
/// less what the process's umask takes away; otherwise those of any new file. Any thread, any number of
/// processes.
bool writeFileAtomically(const QString& path, QByteArrayView bytes,
                         std::optional<QFileDevice::Permissions> permissions = std::nullopt);

} // namespace orvane
