#include "Orvane/ToolServices.h"

#include "OrvaneCore/base/Log.h"
#include "OrvanePlatform/Platform.h"

#include <QDir>

#include <exception>

namespace orvane {

using namespace Qt::StringLiterals;

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
    if (!m_recorder.recordingSessionId())
        return;
    try {
        m_recorder.stopRecording();
    } catch (const std::exception& error) {
        // Somebody else has stopped it meanwhile.
        logLine(u"stop recording failed: "_s + QString::fromUtf8(error.what()));
    }
}

} // namespace orvane
