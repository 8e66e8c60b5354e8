#pragma once

#include <QByteArrayView>
#include <QString>

namespace orvane {

/// Writes a whole file so that a reader of `path` sees either what stood there before or all of the bytes.
/// The bytes go to a hidden file of a unique name in the same directory, which then takes the place of
/// `path`; a symbolic link at `path` is replaced, not followed. The bytes are not forced to the disk: they
/// survive the end of the process, not a power cut. The directory must exist. False when the file cannot be
/// written, and then nothing has changed. Any thread, any number of processes.
bool writeFileAtomically(const QString& path, QByteArrayView bytes);

} // namespace orvane
