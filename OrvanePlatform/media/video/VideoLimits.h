#pragma once

#include "OrvaneCore/platform/MediaBackend.h"

#include <QSize>

namespace orvane::media {

/// Throws PlatformError, with a sentence that says why, when there can be no H.264 movie of that format.
void requirePossible(const VideoFormat& format);

/// The size in which pictures of `size` are stored: the next even numbers.
QSize storedSize(const QSize& size);

} // namespace orvane::media
