#include "OrvaneCore/storage/Retention.h"

#include "OrvaneCore/storage/FolderEntries.h"

#include <chrono>
#include <system_error>
#include <vector>

namespace orvane::retention {

namespace fs = std::filesystem;

namespace {

constexpr qint64 millisecondsADay = 86'400'000;

using FileMilliseconds = std::chrono::time_point<std::chrono::file_clock, std::chrono::milliseconds>;

enum class Links { sweep, keep };

FileMilliseconds toFileTime(std::chrono::milliseconds sinceUnixEpoch) {
    return std::chrono::file_clock::from_sys(
        std::chrono::sys_time<std::chrono::milliseconds>(sinceUnixEpoch));
}

/// False for an entry whose date cannot be read.
bool isOlderThan(const fs::directory_entry& entry, FileMilliseconds cutoff) {
    std::error_code error;
    const fs::file_time_type modified = fs::last_write_time(entry.path(), error);
    // Rounded down, not the cutoff refined: a cutoff centuries ago does not fit into nanoseconds.
    return !error && std::chrono::floor<std::chrono::milliseconds>(modified) < cutoff;
}

int sweep(const QString& folder, FileMilliseconds cutoff, Links links, const std::stop_token& stop) {
    int removed = 0;
    for (const fs::directory_entry& entry : folder_entries::list(folder_entries::toPath(folder))) {
        if (stop.stop_requested())
            break;
        const bool exempt = folder_entries::isHidden(entry) ||
                            (links == Links::keep && folder_entries::typeOf(entry) == fs::file_type::symlink);
        if (!exempt && isOlderThan(entry, cutoff)) {
            folder_entries::remove(entry.path());
            removed += 1;
        }
    }
    return removed;
}

int clear(const QString& folder) {
    const std::vector<fs::directory_entry> entries = folder_entries::list(folder_entries::toPath(folder));
    for (const fs::directory_entry& entry : entries)
        folder_entries::remove(entry.path());
    return static_cast<int>(entries.size());
}

} // namespace

int removeExpired(const QString& capturesDir, const QString& sessionsDir, const QDateTime& now, int days,
                  const std::stop_token& stop) {
    const FileMilliseconds cutoff =
        toFileTime(std::chrono::milliseconds(now.toMSecsSinceEpoch() - days * millisecondsADay));
    const int captures = sweep(capturesDir, cutoff, Links::sweep, stop);
    return captures + sweep(sessionsDir, cutoff, Links::keep, stop);
}

int removeAll(const QString& capturesDir, const QString& sessionsDir) {
    return clear(capturesDir) + clear(sessionsDir);
}

} // namespace orvane::retention
