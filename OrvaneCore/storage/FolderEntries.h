#pragma once

#include <QString>

#include <filesystem>
#include <vector>

/// What lies in folders, without following the links in them. The standard library does the walking because
/// Qt cannot name a file whose name is not valid text, and so could not delete it, and because Qt follows
/// links where these must not. Nothing throws. Any thread.
namespace orvane::folder_entries {

using Entry = std::filesystem::directory_entry;

std::filesystem::path toPath(const QString& path);

/// Whether the name begins with a dot.
bool isHidden(const Entry& entry);

/// The entry's own, also where it is a link; none where it cannot be told.
std::filesystem::file_type typeOf(const Entry& entry);

/// The whole list before anything is done with it: a directory must not change under its own walk. Empty
/// where the directory cannot be read. A link to a directory is listed as that directory is.
std::vector<Entry> list(const std::filesystem::path& directory);

/// With all that is in it; a link, never what it leads to. A failure is passed over.
void remove(const std::filesystem::path& path);

} // namespace orvane::folder_entries
