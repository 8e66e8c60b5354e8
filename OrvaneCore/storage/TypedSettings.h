#pragma once

#include "OrvaneCore/platform/SettingsStore.h"

#include <QString>

#include <optional>

/// Settings read by type: a value of another type counts as absent. Any thread.
namespace orvane::typed_settings {

bool boolean(const SettingsStore& settings, QLatin1String key, bool fallback);

/// Numbers beyond the range of int come out as its nearest end; a fraction is no integer.
std::optional<int> integer(const SettingsStore& settings, QLatin1String key);

/// An integer above 0, else the fallback.
int positiveInteger(const SettingsStore& settings, QLatin1String key, int fallback);

std::optional<QString> text(const SettingsStore& settings, QLatin1String key);

/// Nothing removes the key.
void setText(SettingsStore& settings, QLatin1String key, const std::optional<QString>& value);

} // namespace orvane::typed_settings
