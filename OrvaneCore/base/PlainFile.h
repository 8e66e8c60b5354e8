#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace orvane {

/// All bytes of a file. Nothing unless it is a plain file of at most `largestBytes` that can be read: a
/// device or a pipe might never end. A link counts as what it leads to. Any thread.
std::optional<QByteArray> readPlainFile(const QString& path, qint64 largestBytes);

} // namespace orvane
