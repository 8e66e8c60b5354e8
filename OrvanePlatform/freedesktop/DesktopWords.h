#pragma once

#include "OrvaneCore/platform/PlatformWords.h"

namespace orvane::freedesktop {

/// The words of a Linux desktop with a PC keyboard: Super is the Command key of hotkeys, and Ctrl that of
/// windows.
PlatformWords desktopWords();

} // namespace orvane::freedesktop
