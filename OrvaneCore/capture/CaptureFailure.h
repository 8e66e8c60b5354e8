#pragma once

#include "OrvaneCore/platform/PlatformWords.h"

#include <QString>

#include <exception>

namespace orvane {

/// What the human is told of a capture that has failed with that error: the error's own sentence, but for
/// OrvaneError::permissionDenied, whose sentence knows one platform alone. Any thread.
QString captureFailureText(const std::exception& error, const PlatformWords& words);

} // namespace orvane
