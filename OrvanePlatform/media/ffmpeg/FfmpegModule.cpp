#include "OrvanePlatform/media/ffmpeg/FfmpegModule.h"

#include "OrvanePlatform/media/ffmpeg/FfmpegBackend.h"

namespace orvane::media {

std::unique_ptr<MediaBackend> FfmpegModule::makeBackend() {
    return std::make_unique<FfmpegBackend>();
}

} // namespace orvane::media
