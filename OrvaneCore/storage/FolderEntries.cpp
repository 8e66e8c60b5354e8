#include "OrvaneCore/storage/FolderEntries.h"

#include <QFileInfo>

#include <system_error>

namespace orvane::folder_entries {

namespace fs = std::filesystem;

fs::path toPath(const QString& path) {
    return QFileInfo(path).filesystemFilePath();
}

bool isHidden(const Entry& entry) {
    return entry.path().filename().native().front() == '.';
}

fs::file_type typeOf(const Entry& entry) {
    std::error_code error;
    return entry.symlink_status(error).type();
}

std::vector<Entry> list(const fs::path& directory) {
    std::vector<Entry> entries;
    std::error_code error;
    for (fs::directory_iterator it(directory, error); !error && it != fs::directory_iterator();
         it.increment(error)) {
        entries.push_back(*it);
    }
    return entries;
}

void remove(const fs::path& path) {
    std::error_code error;
    fs::remove_all(path, error);
}

} // namespace orvane::folder_entries
