#include "OrvanePlatform/media/ffmpeg/Mp4Writer.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/media/ffmpeg/Remuxer.h"
#include "OrvanePlatform/posix/GiveWay.h"

#include <algorithm>
#include <exception>

namespace orvane::media {

using namespace Qt::StringLiterals;

namespace {

// A quarter of a second at 1920x1080 and 30 frames a second. More memory than this takes only what is larger
// still, because an encoder must be allowed to be late once.
constexpr qint64 mostWaitingBytes = qint64{64} << 20;
constexpr qint64 fewestWaitingFrames = 4;
constexpr qint64 mostWaitingFrames = 30;

// How long a fragment waits for its last frames.
constexpr std::chrono::milliseconds longestWait{1000};

// The format has no longer frames than 2^31 ticks, which are 6.6 hours.
constexpr qint64 longestFrameTicks = qint64{3600} * ticksPerSecond;

std::size_t waitingFrames(const QSize& size) {
    constexpr qint64 bytesPerPixel = 4;
    const qint64 frameBytes = bytesPerPixel * size.width() * size.height();
    return static_cast<std::size_t>(
        std::clamp(mostWaitingBytes / frameBytes, fewestWaitingFrames, mostWaitingFrames));
}

} // namespace

Mp4Writer::Mp4Writer(const QString& path, const VideoFormat& format)
    : m_path(path)
    , m_encoder(format)
    , m_converter(format.sizePixels)
    , m_file(path, m_encoder.context())
    , m_times(format.framesPerSecond, format.keyFrameInterval)
    , m_queue(waitingFrames(format.sizePixels))
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
    posix::giveWay();
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
        if (const std::optional<TimedFrame> frame = m_queue.take(longestWait)) {
            add(*frame);
        } else {
            m_file.cut();
        }
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
