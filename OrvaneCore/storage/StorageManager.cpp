#include "OrvaneCore/storage/StorageManager.h"

#include "OrvaneCore/storage/Retention.h"
#include "OrvaneCore/storage/TypedSettings.h"

#include <utility>

namespace orvane {

namespace {

constexpr QLatin1String retentionDaysKey("StorageRetentionDays");
constexpr QLatin1String hasOnboardedKey("HasOnboarded");

constexpr int defaultRetentionDays = 30;

} // namespace

StorageManager::StorageManager(SettingsStore& settings, const QString& homeDirectory, const WallClock& clock,
                               Sleep sleep)
    : m_settings(settings)
    , m_clock(clock)
    , m_paths(settings, homeDirectory)
    , m_sessions(m_paths, clock, std::move(sleep))
    , m_recording(settings) {}

StorageManager::UsageStats StorageManager::usageStats() const {
    return measureUsage(capturesDir(), sessionsDir());
}

StorageManager::Cleanup StorageManager::expiredCleanup() const {
    return [captures = capturesDir(), sessions = sessionsDir(), now = m_clock(),
            days = retentionDays()](const std::stop_token& stop) {
        return retention::removeExpired(captures, sessions, now, days, stop);
    };
}

int StorageManager::cleanupAll() const {
    return retention::removeAll(capturesDir(), sessionsDir());
}

int StorageManager::retentionDays() const {
    return typed_settings::positiveInteger(m_settings, retentionDaysKey, defaultRetentionDays);
}

void StorageManager::setRetentionDays(int days) {
    m_settings.setValue(retentionDaysKey, days);
}

bool StorageManager::hasOnboarded() const {
    return typed_settings::boolean(m_settings, hasOnboardedKey, false);
}

void StorageManager::setHasOnboarded(bool done) {
    m_settings.setValue(hasOnboardedKey, done);
}

} // namespace orvane
