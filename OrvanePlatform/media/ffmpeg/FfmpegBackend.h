#pragma once

#include "OrvaneCore/platform/MediaBackend.h"

namespace orvane::media {

/// Movies with the libraries of FFmpeg.
class FfmpegBackend final : public MediaBackend {
public:
    /// FFmpeg's errors go to the log from now on.
    FfmpegBackend();

    std::unique_ptr<VideoWriter> createMp4(const QString& path, const VideoFormat& format) override;
};

} // namespace orvane::media
