#pragma once

#include "OrvanePlatform/media/ffmpeg/FragmentedMp4.h"

#include <QString>

namespace orvane::media {

/// Puts a plain MP4 file in the place of the fragmented one at `path`: its header, which says where
/// everything is, comes first. The packets stay what they are. `content`: what has been written to the file;
/// `lastFrameTicks`: how long its last frame is shown.
/// Throws PlatformError, and then the file is what it was.
void makePlain(const QString& path, const FragmentedMp4::Content& content, qint64 lastFrameTicks);

} // namespace orvane::media
