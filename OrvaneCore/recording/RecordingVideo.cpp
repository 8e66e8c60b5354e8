#include "OrvaneCore/recording/RecordingVideo.h"

#include "OrvaneCore/base/FixedText.h"
#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/platform/PlatformError.h"

#include <QDir>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int bitsPerPixelAndSecond = 2;
constexpr int secondsBetweenKeyFrames = 2;

} // namespace

std::unique_ptr<RecordingVideo> RecordingVideo::start(MediaBackend& media, Clock& clock,
                                                      const QString& folder, const QSize& sizePixels,
                                                      int framesPerSecond) {
    const VideoFormat format{.sizePixels = sizePixels,
                             .framesPerSecond = framesPerSecond,
                             .bitsPerSecond =
                                 qint64(sizePixels.width()) * sizePixels.height() * bitsPerPixelAndSecond,
                             .keyFrameInterval = framesPerSecond * secondsBetweenKeyFrames};
    std::unique_ptr<VideoWriter> writer;
    try {
        writer = media.createMp4(QDir(folder).filePath(u"recording.mp4"_s), format);
    } catch (const PlatformError& error) {
        logLine(u"failed to start video writer: "_s + error.message());
        return nullptr;
    }
    logLine(u"video writer started (%1x%2 @ %3fps)"_s.arg(sizePixels.width())
                .arg(sizePixels.height())
                .arg(framesPerSecond));
    return std::unique_ptr<RecordingVideo>(new RecordingVideo(std::move(writer), clock, framesPerSecond));
}

RecordingVideo::RecordingVideo(std::unique_ptr<VideoWriter> writer, Clock& clock, int framesPerSecond)
    : m_clock(clock)
    , m_framesPerSecond(framesPerSecond)
    , m_startTime(clock.monotonic())
    , m_writer(std::move(writer)) {}

void RecordingVideo::append(const QImage& picture) {
    const std::scoped_lock lock(m_mutex);
    if (m_writer && m_writer->append(picture, m_clock.monotonic() - m_startTime))
        ++m_frameCount;
}

void RecordingVideo::stop() {
    const std::scoped_lock lock(m_mutex);
    if (!m_writer)
        return;
    try {
        m_writer->finish();
    } catch (const PlatformError& error) {
        logLine(u"video writer error: "_s + error.message());
    }
    m_writer.reset();
    logLine(u"video saved ("_s + QString::number(m_frameCount) + u" frames, "_s +
            fixedText(double(m_frameCount) / m_framesPerSecond, 1) + u"s)"_s);
}

} // namespace orvane
