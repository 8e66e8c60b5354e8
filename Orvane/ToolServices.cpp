#include "Orvane/ToolServices.h"

#include "OrvaneCore/base/Log.h"
#include "OrvanePlatform/Platform.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QSemaphore>

#include <exception>
#include <memory>
#include <thread>

namespace orvane {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto endPoll = 10ms;

} // namespace

ToolServices::ToolServices(Platform& platform)
    : m_storage(platform.settingsStore(), QDir::homePath())
    , m_discovery(platform.windowServer(), platform.displays())
    , m_screenCapture(platform.screenSource(), platform.displays(), platform.pngWriter())
    , m_recorder(m_discovery, m_screenCapture, m_storage, platform.pngWriter(), platform.media(), m_clock)
    , m_textRecognizer(platform.textRecognition())
    , m_captureTools(m_discovery, m_screenCapture, m_textRecognizer, m_storage, platform.pngWriter())
    , m_sessionTools(m_recorder, m_screenCapture, m_textRecognizer, m_storage)
    , m_toolHandler(m_captureTools, m_sessionTools)
    , m_server(m_toolHandler) {}

ToolServices::~ToolServices() {
    stopRecording();
}

void ToolServices::stopRecording() {
    if (!m_recorder.recordingSessionId())
        return;
    try {
        m_recorder.stopRecording();
    } catch (const std::exception& error) {
        // Somebody else has stopped it meanwhile.
        logLine(u"stop recording failed: "_s + QString::fromUtf8(error.what()));
    }
}

bool ToolServices::finishRecording(std::chrono::milliseconds patience) {
    const QDeadlineTimer deadline(patience);
    const auto stopped = std::make_shared<QSemaphore>();
    std::thread([this, stopped] {
        stopRecording();
        stopped->release();
    }).detach();
    if (!stopped->tryAcquire(1, static_cast<int>(patience.count())))
        return false;
    while (m_recorder.currentSessionDir()) {
        if (deadline.hasExpired())
            return false;
        std::this_thread::sleep_for(endPoll);
    }
    return true;
}

} // namespace orvane
