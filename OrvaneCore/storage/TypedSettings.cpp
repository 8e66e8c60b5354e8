#include "OrvaneCore/storage/TypedSettings.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvane::typed_settings {

bool boolean(const SettingsStore& settings, QLatin1String key, bool fallback) {
    return settings.value(key).toBool(fallback);
}

std::optional<int> integer(const SettingsStore& settings, QLatin1String key) {
    const QJsonValue value = settings.value(key);
    if (!value.isDouble() || std::trunc(value.toDouble()) != value.toDouble())
        return std::nullopt;
    return static_cast<int>(std::clamp(value.toDouble(), double(std::numeric_limits<int>::min()),
                                       double(std::numeric_limits<int>::max())));
}

int positiveInteger(const SettingsStore& settings, QLatin1String key, int fallback) {
    const int value = integer(settings, key).value_or(fallback);
    return value > 0 ? value : fallback;
}

std::optional<QString> text(const SettingsStore& settings, QLatin1String key) {
    const QJsonValue value = settings.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

void setText(SettingsStore& settings, QLatin1String key, const std::optional<QString>& value) {
    settings.setValue(key, value ? QJsonValue(*value) : QJsonValue(QJsonValue::Undefined));
}

} // namespace orvane::typed_settings
