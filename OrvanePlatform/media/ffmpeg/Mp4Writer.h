#pragma once

#include "OrvaneCore/platform/MediaBackend.h"
#include "OrvanePlatform/media/ffmpeg/FragmentedMp4.h"
#include "OrvanePlatform/media/ffmpeg/FrameConverter.h"
#include "OrvanePlatform/media/ffmpeg/H264Encoder.h"
#include "OrvanePlatform/media/video/FrameQueue.h"
#include "OrvanePlatform/media/video/MovieTimes.h"

#include <atomic>
#include <thread>

namespace orvane::media {

/// Writes a movie with a thread of its own, as a fragmented MP4 file until it is finished.
class Mp4Writer final : public VideoWriter {
public:
    /// A new file at `path`. Throws PlatformError, and then there is no file.
    Mp4Writer(const QString& path, const VideoFormat& format);
    ~Mp4Writer() override;
    Mp4Writer(const Mp4Writer&) = delete;
    Mp4Writer& operator=(const Mp4Writer&) = delete;

    bool append(const QImage& frame, std::chrono::microseconds time) override;
    void finish() override;

private:
    void run();
    void writeFrames();
    void add(const TimedFrame& frame);
    void encode(AVFrame& picture, qint64 tick);
    void store(AVPacket& packet);

    const QString m_path;
    /// All but the queue belong to the thread until it ends.
    H264Encoder m_encoder;
    FrameConverter m_converter;
    FragmentedMp4 m_file;
    MovieTimes m_times;
    AVFrame* m_lastPicture = nullptr;
    qint64 m_lastTick = 0;
    QString m_failure;

    FrameQueue m_queue;
    std::atomic<bool> m_hasFailed = false;
    bool m_isFinished = false;
    std::thread m_thread;
};

} // namespace orvane::media
