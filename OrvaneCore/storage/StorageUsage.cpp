#include "OrvaneCore/storage/StorageUsage.h"

#include "OrvaneCore/storage/FolderEntries.h"

#include <QLocale>

#include <system_error>
#include <utility>
#include <vector>

namespace orvane {

namespace fs = std::filesystem;

namespace {

struct FileTotals {
    qint64 count = 0;
    quint64 bytes = 0;
};

quint64 sizeOf(const fs::directory_entry& entry, fs::file_type type) {
    std::error_code error;
    if (type == fs::file_type::symlink)
        return fs::read_symlink(entry.path(), error).native().size();
    const auto size = type == fs::file_type::regular ? entry.file_size(error) : 0;
    return error ? 0 : size;
}

FileTotals measure(const QString& root) {
    FileTotals totals;
    std::vector<fs::path> pending{folder_entries::toPath(root)};
    while (!pending.empty()) {
        const fs::path directory = std::move(pending.back());
        pending.pop_back();
        for (const fs::directory_entry& entry : folder_entries::list(directory)) {
            const fs::file_type type = folder_entries::typeOf(entry);
            if (folder_entries::isHidden(entry) || type == fs::file_type::none ||
                type == fs::file_type::not_found) {
                continue;
            }
            if (type == fs::file_type::directory) {
                pending.push_back(entry.path());
                continue;
            }
            totals.count += 1;
            totals.bytes += sizeOf(entry, type);
        }
    }
    return totals;
}

QString formatBytes(quint64 bytes) {
    return QLocale().formattedDataSize(static_cast<qint64>(bytes), 2, QLocale::DataSizeSIFormat);
}

} // namespace

QString StorageUsage::capturesFormatted() const {
    return formatBytes(captureBytes);
}

QString StorageUsage::sessionsFormatted() const {
    return formatBytes(sessionBytes);
}

QString StorageUsage::totalFormatted() const {
    return formatBytes(totalBytes());
}

StorageUsage measureUsage(const QString& capturesDir, const QString& sessionsDir) {
    const FileTotals captures = measure(capturesDir);
    const FileTotals sessions = measure(sessionsDir);
    return {captures.count, captures.bytes, sessions.count, sessions.bytes};
}

} // namespace orvane
