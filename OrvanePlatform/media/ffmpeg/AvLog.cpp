#include "OrvanePlatform/media/ffmpeg/AvLog.h"

#include "OrvaneCore/base/Log.h"

#include <QString>

#include <array>
#include <chrono>
#include <cstdarg>
#include <map>
#include <mutex>

extern "C" {
#include <libavutil/log.h>
}

namespace orvane::media {

using namespace Qt::StringLiterals;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::minutes pauseOfAMessage{1};
constexpr std::size_t mostMessagesKnown = 100;

/// Whether it is time for a message, which is known by its format: its numbers change from one time to the
/// next.
class Repetitions {
public:
    bool isToBeSaid(const char* format) {
        const std::lock_guard lock(m_mutex);
        const Clock::time_point now = Clock::now();
        const auto known = m_lastTimes.find(format);
        if (known != m_lastTimes.end() && now - known->second < pauseOfAMessage)
            return false;
        if (known == m_lastTimes.end() && m_lastTimes.size() >= mostMessagesKnown)
            m_lastTimes.clear();
        m_lastTimes[format] = now;
        return true;
    }

private:
    std::mutex m_mutex;
    std::map<const char*, Clock::time_point> m_lastTimes;
};

void log(void* source, int level, const char* format, va_list arguments) {
    // The bits above are a colour.
    if ((level & 0xff) > AV_LOG_ERROR)
        return;
    // Never destroyed, because threads of the libraries may outlive static storage.
    static auto& repetitions = *new Repetitions;
    if (!repetitions.isToBeSaid(format))
        return;
    std::array<char, 1024> line{};
    int isAtBegin = 1;
    av_log_format_line2(source, level, format, arguments, line.data(), static_cast<int>(line.size()),
                        &isAtBegin);
    logLine(u"FFmpeg: "_s + QString::fromUtf8(line.data()).simplified());
}

} // namespace

void logAvErrors() {
    av_log_set_callback(log);
}

} // namespace orvane::media
