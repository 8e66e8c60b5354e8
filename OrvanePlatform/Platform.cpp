#include "OrvanePlatform/Platform.h"

#include "OrvanePlatform/DesktopSession.h"
#include "OrvanePlatform/freedesktop/AutostartFile.h"
#include "OrvanePlatform/freedesktop/DesktopEntries.h"
#include "OrvanePlatform/freedesktop/DesktopWords.h"
#include "OrvanePlatform/freedesktop/JsonSettingsStore.h"
#include "OrvanePlatform/freedesktop/KeyringSecretStore.h"
#include "OrvanePlatform/headless/HeadlessDesktop.h"
#include "OrvanePlatform/headless/NoWindows.h"
#include "OrvanePlatform/media/LazyMedia.h"
#include "OrvanePlatform/ocr/LazyTextRecognition.h"
#include "OrvanePlatform/png/IgzipWriter.h"
#include "OrvanePlatform/posix/ConnectionPeer.h"
#include "OrvanePlatform/posix/DetachedApplication.h"
#include "OrvanePlatform/posix/EndNotifier.h"
#include "OrvanePlatform/posix/EndWatch.h"
#include "OrvanePlatform/posix/GiveWay.h"
#include "OrvanePlatform/posix/PosixStreams.h"
#include "OrvanePlatform/posix/SingleInstanceGuard.h"
#include "OrvanePlatform/posix/ThisProcess.h"
#include "OrvanePlatform/qt/SystemClipboard.h"
#include "OrvanePlatform/x11/X11DesktopKeyboard.h"
#include "OrvanePlatform/x11/X11DesktopShell.h"
#include "OrvanePlatform/x11/X11Displays.h"
#include "OrvanePlatform/x11/X11Hotkeys.h"
#include "OrvanePlatform/x11/X11ScreenSource.h"
#include "OrvanePlatform/x11/X11Session.h"
#include "OrvanePlatform/x11/X11Surfaces.h"
#include "OrvanePlatform/x11/X11WindowServer.h"

#include <QDir>

#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

/// What the program goes by among the user's secrets.
QString keyringService() {
    return u"com.orvane.app"_s;
}

class SignalRequests final : public EndRequests {
public:
    explicit SignalRequests(std::function<void()> handler)
        : m_notifier(std::move(handler)) {}

private:
    posix::EndNotifier m_notifier;
};

class WatchedRequests final : public EndRequests {
public:
    WatchedRequests(int descriptor, std::function<void()> handler)
        : m_watch(descriptor, std::move(handler)) {}

private:
    posix::EndWatch m_watch;
};

/// What does not depend on the kind of desktop.
class CommonPlatform : public Platform {
public:
    SettingsStore& settingsStore() override { return m_settings; }
    PngWriter& pngWriter() override { return m_pngWriter; }
    StandardStreams& standardStreams() override { return m_streams; }
    TextRecognitionBackend& textRecognition() override { return m_textRecognition; }
    MediaBackend& media() override { return m_media; }
    SecretStore& secretStore() override { return m_secrets; }
    ApplicationStarter& applicationStarter() override { return m_applicationStarter; }
    PeerOwner& peerOwner() override { return m_peerOwner; }
    AutostartEntry& autostartEntry() override { return m_autostart; }
    Clipboard& clipboard() override { return m_clipboard; }
    const PlatformWords& words() const override { return m_words; }

    std::unique_ptr<InstanceLock> acquireInstanceLock(const QString& path) override {
        return posix::SingleInstanceGuard::acquire(path);
    }
    std::unique_ptr<EndRequests> endInputOnSignals(std::function<void()> handler) override {
        m_streams.endInputOnSignals();
        return std::make_unique<WatchedRequests>(m_streams.endDescriptor(), std::move(handler));
    }
    std::unique_ptr<EndRequests> whenAskedToEnd(std::function<void()> handler) override {
        return std::make_unique<SignalRequests>(std::move(handler));
    }
    bool standardErrorIsTerminal() const override { return posix::standardErrorIsTerminal(); }

private:
    freedesktop::JsonSettingsStore m_settings{freedesktop::JsonSettingsStore::defaultPath()};
    freedesktop::KeyringSecretStore m_secrets{keyringService(), freedesktop::FileSecretStore::defaultPath()};
    png::IgzipWriter m_pngWriter;
    posix::PosixStreams m_streams;
    ocr::LazyTextRecognition m_textRecognition;
    media::LazyMedia m_media;
    posix::DetachedApplication m_applicationStarter{posix::executablePath(), QDir::homePath(),
                                                    [this] { return !displayTrouble(); }};
    posix::ConnectionPeer m_peerOwner;
    freedesktop::AutostartFile m_autostart{posix::executablePath()};
    qt::SystemClipboard m_clipboard;
    PlatformWords m_words = freedesktop::desktopWords();
};

class X11Platform final : public CommonPlatform {
public:
    explicit X11Platform(bool isPartOfWayland)
        : m_shell(m_session, isPartOfWayland) {}

    Displays& displays() override { return m_displays; }
    WindowServer& windowServer() override { return m_windowServer; }
    ScreenSource& screenSource() override { return m_screenSource; }
    DesktopShell& desktopShell() override { return m_shell; }
    DesktopKeyboard& desktopKeyboard() override { return m_keyboard; }
    Surfaces& surfaces() override { return m_surfaces; }
    std::unique_ptr<GlobalHotkeys> makeHotkeys() override { return std::make_unique<x11::X11Hotkeys>(); }
    QByteArray windowSystem() const override { return "xcb"; }

    std::optional<QString> displayTrouble() override {
        try {
            m_session.connection();
            return std::nullopt;
        } catch (const PlatformError& error) {
            return error.message();
        }
    }

private:
    x11::X11Session m_session;
    freedesktop::DesktopEntries m_entries{freedesktop::DesktopEntries::standardFolders(),
                                          freedesktop::DesktopEntries::processLocale()};
    x11::X11Displays m_displays{m_session};
    x11::X11WindowServer m_windowServer{m_session, m_entries};
    x11::X11ScreenSource m_screenSource{m_session};
    x11::X11DesktopShell m_shell;
    x11::X11DesktopKeyboard m_keyboard{m_session};
    x11::X11Surfaces m_surfaces{m_session};
};

class HeadlessPlatform final : public CommonPlatform {
public:
    Displays& displays() override { return m_desktop; }
    WindowServer& windowServer() override { return m_desktop; }
    ScreenSource& screenSource() override { return m_desktop; }
    DesktopShell& desktopShell() override { return m_shell; }
    DesktopKeyboard& desktopKeyboard() override { return m_keyboard; }
    Surfaces& surfaces() override { return m_surfaces; }
    std::unique_ptr<GlobalHotkeys> makeHotkeys() override { return std::make_unique<headless::NoHotkeys>(); }
    QByteArray windowSystem() const override { return "offscreen"; }
    std::optional<QString> displayTrouble() override { return m_desktop.unavailableReason(); }

private:
    headless::HeadlessDesktop m_desktop;
    headless::NoShell m_shell;
    headless::NoKeyboard m_keyboard;
    headless::NoSurfaces m_surfaces;
};

} // namespace

void prepareProcess() {
    posix::surviveBrokenPipes();
    posix::nameHomeFolder();
}

std::unique_ptr<Platform> makePlatform() {
    const DesktopSession session = desktopSession(QProcessEnvironment::systemEnvironment());
    switch (desktopPorts(session)) {
    case DesktopPorts::headless:
        break;
    case DesktopPorts::x11:
        return std::make_unique<X11Platform>(session.hasWayland);
    }
    return std::make_unique<HeadlessPlatform>();
}

void giveWay() {
    posix::giveWay();
}

} // namespace orvane
