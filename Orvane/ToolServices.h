#pragma once

#include "OrvaneCore/base/Clock.h"
#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/capture/WindowDiscovery.h"
#include "OrvaneCore/mcp/MCPServer.h"
#include "OrvaneCore/recognition/TextRecognizer.h"
#include "OrvaneCore/recording/ScreenRecorder.h"
#include "OrvaneCore/storage/StorageManager.h"
#include "OrvaneCore/tools/CaptureTools.h"
#include "OrvaneCore/tools/SessionTools.h"
#include "OrvaneCore/tools/ToolHandler.h"

#include <chrono>

namespace orvane {

class Platform;

/// The tools with all that they stand on, wired up: one set in each process that serves them. Any thread.
/// Needs a QGuiApplication, because pictures have text on them.
class ToolServices {
public:
    /// The platform outlives the services.
    explicit ToolServices(Platform& platform);
    /// A recording that is going on, whoever began it, is brought to its end.
    ~ToolServices();
    ToolServices(const ToolServices&) = delete;
    ToolServices& operator=(const ToolServices&) = delete;

    /// Brings a recording that is going on to its end, and waits for one that somebody else is bringing to
    /// its end, at most that long. True when no recording is being made any more. After false these services
    /// may not be destroyed, because a thread still works on it.
    bool finishRecording(std::chrono::milliseconds patience);

    StorageManager& storage() { return m_storage; }
    WindowDiscovery& discovery() { return m_discovery; }
    ScreenCapture& screenCapture() { return m_screenCapture; }
    ScreenRecorder& recorder() { return m_recorder; }
    const TextRecognizer& textRecognizer() const { return m_textRecognizer; }
    const MCPServer& server() const { return m_server; }

private:
    void stopRecording();

    StorageManager m_storage;
    WindowDiscovery m_discovery;
    ScreenCapture m_screenCapture;
    SystemClock m_clock;
    ScreenRecorder m_recorder;
    TextRecognizer m_textRecognizer;
    CaptureTools m_captureTools;
    SessionTools m_sessionTools;
    ToolHandler m_toolHandler;
    MCPServer m_server;
};

} // namespace orvane
