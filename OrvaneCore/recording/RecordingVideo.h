#pragma once

#include "OrvaneCore/base/Clock.h"
#include "OrvaneCore/platform/MediaBackend.h"

#include <memory>
#include <mutex>

namespace orvane {

/// The movie of one recording. A failure of any kind ends in the log, never at the recording. Any thread.
class RecordingVideo {
public:
    /// Begins "recording.mp4" in the folder, with two bits a pixel and second and a key frame at least every
    /// two seconds. Null when it cannot be begun. Backend and clock outlive it.
    static std::unique_ptr<RecordingVideo> start(MediaBackend& media, Clock& clock, const QString& folder,
                                                 const QSize& sizePixels, int framesPerSecond);

    int framesPerSecond() const { return m_framesPerSecond; }

    /// Shows the picture from now on. Left out without a word when the encoder is not ready, or after stop().
    void append(const QImage& picture);

    /// Waits until the movie is on the disk. Only the first call does something.
    void stop();

private:
    RecordingVideo(std::unique_ptr<VideoWriter> writer, Clock& clock, int framesPerSecond);

    Clock& m_clock;
    const int m_framesPerSecond;
    const Clock::Monotonic m_startTime;
    std::mutex m_mutex;
    /// Null after stop().
    std::unique_ptr<VideoWriter> m_writer;
    qint64 m_frameCount = 0;
};

} // namespace orvane
