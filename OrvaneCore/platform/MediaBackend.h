#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <chrono>
#include <memory>

namespace orvane {

/// What a movie is to be.
struct VideoFormat {
    /// The picture's, in pixels. An odd width or height is stored one larger, its last column or row twice,
    /// because the pixel format of the movie knows even sizes only.
    QSize sizePixels;
    /// The rate at which frames are expected; what counts for each frame is its own time.
    int framesPerSecond = 30;
    /// The average to keep to.
    qint64 bitsPerSecond = 0;
    /// The most frames from one key frame to the next.
    int keyFrameInterval = 60;
};

/// One movie that is being written. One thread at a time. Destroyed unfinished, it leaves what it has written
/// so far, as a process does that is killed: a file that plays up to its last second or so, or up to its last
/// frame but one where frames come slower than that.
class VideoWriter {
public:
    virtual ~VideoWriter() = default;

    /// Takes a frame of any size, which is scaled to the movie's, to be shown at `time` after the movie's
    /// begin; times ascend. Each is shown until the next one, the first from the begin on, and the last for
    /// as long as the rate of the format says. Alpha is ignored. Returns soon: encoding and writing go on
    /// behind it. False, and the frame is dropped, when the encoder is not ready for more. A writer that has
    /// failed goes on taking frames and keeps none of them; finish() tells. After finish() nothing is taken.
    virtual bool append(const QImage& frame, std::chrono::microseconds time) = 0;

    /// Waits until every frame is on the disk and the file is as players like it best. Only the first call
    /// does something. Throws PlatformError with the first thing that went wrong since the beginning; the
    /// file then has what could be kept.
    virtual void finish() = 0;

protected:
    VideoWriter() = default;
    VideoWriter(const VideoWriter&) = default;
    VideoWriter& operator=(const VideoWriter&) = default;
};

/// Movies. Any thread; calls may run side by side. The first call may load the media libraries.
class MediaBackend {
public:
    virtual ~MediaBackend() = default;

    /// A new MP4 file (ISO/IEC 14496-14) with H.264 video in the pixel format yuv420p; a file of that name is
    /// replaced. Throws PlatformError when the libraries cannot be had, when the format is impossible and
    /// when the file cannot be made; then there is no file.
    virtual std::unique_ptr<VideoWriter> createMp4(const QString& path, const VideoFormat& format) = 0;

protected:
    MediaBackend() = default;
    MediaBackend(const MediaBackend&) = default;
    MediaBackend& operator=(const MediaBackend&) = default;
};

} // namespace orvane
