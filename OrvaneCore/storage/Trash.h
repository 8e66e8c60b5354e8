#pragma once

#include <QString>

#include <optional>

namespace orvane {

/// Moves a file or a folder to the user's trash; a link, never what it leads to. The reason when that is not
/// possible, and then it stays where it is. Any thread.
std::optional<QString> moveToTrash(const QString& path);

} // namespace orvane
