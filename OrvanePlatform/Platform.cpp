#include "OrvanePlatform/Platform.h"

#include "OrvanePlatform/freedesktop/DesktopEntries.h"
#include "OrvanePlatform/freedesktop/JsonSettingsStore.h"
#include "OrvanePlatform/headless/HeadlessDesktop.h"
#include "OrvanePlatform/media/LazyMedia.h"
#include "OrvanePlatform/ocr/LazyTextRecognition.h"
#include "OrvanePlatform/png/SpngWriter.h"
#include "OrvanePlatform/posix/PosixStreams.h"
#include "OrvanePlatform/x11/X11Displays.h"
#include "OrvanePlatform/x11/X11ScreenSource.h"
#include "OrvanePlatform/x11/X11Session.h"
#include "OrvanePlatform/x11/X11WindowServer.h"

namespace orvane {

namespace {

/// What does not depend on the kind of desktop.
class CommonPlatform : public Platform {
public:
    SettingsStore& settingsStore() override { return m_settings; }
    PngWriter& pngWriter() override { return m_pngWriter; }
    StandardStreams& standardStreams() override { return m_streams; }
    TextRecognitionBackend& textRecognition() override { return m_textRecognition; }
    MediaBackend& media() override { return m_media; }

private:
    freedesktop::JsonSettingsStore m_settings{freedesktop::JsonSettingsStore::defaultPath()};
    png::SpngWriter m_pngWriter;
    posix::PosixStreams m_streams;
    ocr::LazyTextRecognition m_textRecognition;
    media::LazyMedia m_media;
};

class X11Platform final : public CommonPlatform {
public:
    Displays& displays() override { return m_displays; }
    WindowServer& windowServer() override { return m_windowServer; }
    ScreenSource& screenSource() override { return m_screenSource; }

private:
    x11::X11Session m_session;
    freedesktop::DesktopEntries m_entries{freedesktop::DesktopEntries::standardFolders(),
                                          freedesktop::DesktopEntries::processLocale()};
    x11::X11Displays m_displays{m_session};
    x11::X11WindowServer m_windowServer{m_session, m_entries};
    x11::X11ScreenSource m_screenSource{m_session};
};

class HeadlessPlatform final : public CommonPlatform {
public:
    Displays& displays() override { return m_desktop; }
    WindowServer& windowServer() override { return m_desktop; }
    ScreenSource& screenSource() override { return m_desktop; }

private:
    headless::HeadlessDesktop m_desktop;
};

} // namespace

std::unique_ptr<Platform> makePlatform() {
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        return std::make_unique<HeadlessPlatform>();
    return std::make_unique<X11Platform>();
}

} // namespace orvane
