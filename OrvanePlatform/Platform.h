#pragma once

#include "OrvaneCore/platform/ApplicationStarter.h"
#include "OrvaneCore/platform/AutostartEntry.h"
#include "OrvaneCore/platform/Clipboard.h"
#include "OrvaneCore/platform/DesktopKeyboard.h"
#include "OrvaneCore/platform/DesktopShell.h"
#include "OrvaneCore/platform/Displays.h"
#include "OrvaneCore/platform/GlobalHotkeys.h"
#include "OrvaneCore/platform/InstanceLock.h"
#include "OrvaneCore/platform/MediaBackend.h"
#include "OrvaneCore/platform/PeerOwner.h"
#include "OrvaneCore/platform/PlatformWords.h"
#include "OrvaneCore/platform/PngWriter.h"
#include "OrvaneCore/platform/ScreenSource.h"
#include "OrvaneCore/platform/SecretStore.h"
#include "OrvaneCore/platform/SettingsStore.h"
#include "OrvaneCore/platform/StandardStreams.h"
#include "OrvaneCore/platform/Surfaces.h"
#include "OrvaneCore/platform/TextRecognitionBackend.h"
#include "OrvaneCore/platform/WindowServer.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace orvane {

/// Watches for requests to end as long as it lives.
class EndRequests {
public:
    virtual ~EndRequests() = default;
    EndRequests(const EndRequests&) = delete;
    EndRequests& operator=(const EndRequests&) = delete;

protected:
    EndRequests() = default;
};

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
    virtual SecretStore& secretStore() = 0;
    virtual ApplicationStarter& applicationStarter() = 0;
    virtual PeerOwner& peerOwner() = 0;
    virtual AutostartEntry& autostartEntry() = 0;
    virtual DesktopShell& desktopShell() = 0;
    virtual DesktopKeyboard& desktopKeyboard() = 0;
    virtual Surfaces& surfaces() = 0;
    virtual Clipboard& clipboard() = 0;
    virtual std::unique_ptr<GlobalHotkeys> makeHotkeys() = 0;

    /// What the human is to read of keys and places.
    virtual const PlatformWords& words() const = 0;

    /// The lock at that path, held; nothing while another process holds it. One that cannot even be made
    /// keeps nobody out.
    virtual std::unique_ptr<InstanceLock> acquireInstanceLock(const QString& path) = 0;

    /// Why windows cannot be shown, as a sentence that says what to do; nothing where they can.
    virtual std::optional<QString> displayTrouble() = 0;

    /// What Qt calls the window system, for a process that shows windows.
    virtual QByteArray windowSystem() const = 0;

    /// From now on the standard input ends also when a signal asks the process to end. The thread that reads.
    /// While what it gives lives, the handler is called once then, on a thread of its own; whoever lets go of
    /// it waits for a handler that runs.
    virtual std::unique_ptr<EndRequests> endInputOnSignals(std::function<void()> handler) = 0;

    /// While what it gives lives, the handler is called on the main thread, whose event loop runs, when a
    /// signal asks the process to end. Not together with `endInputOnSignals`.
    virtual std::unique_ptr<EndRequests> whenAskedToEnd(std::function<void()> handler) = 0;

    /// Whether what is logged is read on a terminal.
    virtual bool standardErrorIsTerminal() const = 0;

protected:
    Platform() = default;
    Platform(const Platform&) = default;
    Platform& operator=(const Platform&) = default;
};

/// Makes the process one that survives its log's readers and knows its user's home folder. First of all in
/// main.
void prepareProcess();

/// What suits the session that this process runs in (DesktopSession.h). Connects to nothing yet.
std::unique_ptr<Platform> makePlatform();

/// Makes the calling thread give way to all others from now on, for the processor and for the disk. Where
/// that cannot be had, it goes on as before. Needs no Platform, since the thread may outlive it.
void giveWay();

} // namespace orvane
