#include "OrvanePlatform/media/ffmpeg/Mp4Writer.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/media/ffmpeg/Remuxer.h"

#include <exception>

namespace orvane::media {

using namespace Qt::StringLiterals;

namespace {

// Enough for an encoder that is late once, little enough for frames of 8 megabytes and more.
constexpr std::size_t mostWaitingFrames = 4;

// How long a fragment waits for its last frames.
constexpr std::chrono::milliseconds longestWait{1000};

// The format has no longer frames than 2^31 ticks, which are 6.6 hours.
constexpr qint64 longestFrameTicks = qint64{3600} * ticksPerSecond;

} // namespace

Mp4Writer::Mp4Writer(const QString& path, const VideoFormat& format)
    : m_path(path)
    , m_encoder(format)
    , m_converter(format.sizePixels)
    , m_file(path, m_encoder.context())
    , m_times(format.framesPerSecond, format.keyFrameInterval)
    , m_queue(mostWaitingFrames)
    , m_thread([this] { run(); }) {}

Mp4Writer::~Mp4Writer() {
    m_queue.close();
    m_queue.clear();
    if (m_thread.joinable())
        m_thread.join();
}

bool Mp4Writer::append(const QImage& frame, std::chrono::microseconds time) {
    if (m_isFinished || frame.isNull())
        return false;
    if (m_hasFailed)
        return true;
    return m_queue.push({frame, time});
}

void Mp4Writer::finish() {
    if (m_isFinished)
        return;
    m_isFinished = true;
    m_queue.close();
    m_thread.join();
    if (m_hasFailed)
        throw PlatformError(m_failure);
    // A header is all there is of a movie without frames.
    if (m_file.content().packets == 0)
        return;
    try {
        makePlain(m_path, m_file.content(), m_times.lastFrameTicks());
    } catch (const std::exception& error) {
        throw PlatformError(u"The movie %1 plays, but could not be given its final form. %2"_s.arg(
            m_path, QString::fromUtf8(error.what())));
    }
}

void Mp4Writer::run() {
    try {
        writeFrames();
    } catch (const std::exception& error) {
        m_failure = QString::fromUtf8(error.what());
        m_hasFailed = true;
        m_queue.clear();
    }
}

void Mp4Writer::writeFrames() {
    while (!m_queue.isOver()) {
        if (const std::optional<TimedFrame> frame = m_queue.take(longestWait))
            add(*frame);
        else
            m_file.cut();
    }
    m_encoder.finish([this](AVPacket& packet) { store(packet); });
    m_file.cut();
}

void Mp4Writer::add(const TimedFrame& frame) {
    const qint64 tick = m_times.tickOf(frame.time);
    while (m_lastPicture != nullptr && tick - m_lastTick > longestFrameTicks)
        encode(*m_lastPicture, m_lastTick + longestFrameTicks);
    encode(m_converter.convert(frame.picture), tick);
}

void Mp4Writer::encode(AVFrame& picture, qint64 tick) {
    const bool isKeyFrame = m_times.isKeyFrameDue(tick);
    if (isKeyFrame)
        m_times.noteKeyFrame(tick);
    m_encoder.encode(picture, tick, isKeyFrame, [this](AVPacket& packet) { store(packet); });
    m_lastPicture = &picture;
    m_lastTick = tick;
}

void Mp4Writer::store(AVPacket& packet) {
    if ((packet.flags & AV_PKT_FLAG_KEY) != 0)
        m_times.noteKeyFrame(packet.pts);
    m_file.write(packet);
}

} // namespace orvane::media
