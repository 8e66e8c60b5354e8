#include "OrvanePlatform/media/ffmpeg/FfmpegBackend.h"

#include "OrvanePlatform/media/ffmpeg/AvLog.h"
#include "OrvanePlatform/media/ffmpeg/Mp4Writer.h"
#include "OrvanePlatform/media/video/VideoLimits.h"

namespace orvane::media {

FfmpegBackend::FfmpegBackend() {
    logAvErrors();
}

std::unique_ptr<VideoWriter> FfmpegBackend::createMp4(const QString& path, const VideoFormat& format) {
    requirePossible(format);
    return std::make_unique<Mp4Writer>(path, format);
}

} // namespace orvane::media
