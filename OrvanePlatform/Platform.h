#pragma once

#include "OrvaneCore/platform/Displays.h"
#include "OrvaneCore/platform/MediaBackend.h"
#include "OrvaneCore/platform/PngWriter.h"
#include "OrvaneCore/platform/ScreenSource.h"
#include "OrvaneCore/platform/SettingsStore.h"
#include "OrvaneCore/platform/StandardStreams.h"
#include "OrvaneCore/platform/TextRecognitionBackend.h"
#include "OrvaneCore/platform/WindowServer.h"

#include <memory>

namespace orvane {

/// Every port with the implementation that suits this machine. Made once at start, owned by the composition
/// root, and outlived by nothing that was handed one of its ports.
class Platform {
public:
    virtual ~Platform() = default;

    virtual Displays& displays() = 0;
    virtual WindowServer& windowServer() = 0;
    virtual ScreenSource& screenSource() = 0;
    virtual SettingsStore& settingsStore() = 0;
    virtual PngWriter& pngWriter() = 0;
    virtual StandardStreams& standardStreams() = 0;
    virtual TextRecognitionBackend& textRecognition() = 0;
    virtual MediaBackend& media() = 0;

protected:
    Platform() = default;
    Platform(const Platform&) = default;
    Platform& operator=(const Platform&) = default;
};

/// X11 where DISPLAY is set, else a desktop without displays. Connects to nothing yet.
std::unique_ptr<Platform> makePlatform();

} // namespace orvane
