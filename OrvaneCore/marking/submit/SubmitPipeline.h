#pragma once

#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/capture/WindowDiscovery.h"
#include "OrvaneCore/marking/submit/SubmitRequest.h"
#include "OrvaneCore/marking/submit/SubmitResult.h"
#include "OrvaneCore/platform/Clipboard.h"
#include "OrvaneCore/platform/PlatformWords.h"
#include "OrvaneCore/recognition/TextRecognizer.h"
#include "OrvaneCore/send/DirectSender.h"
#include "OrvaneCore/storage/StorageManager.h"

#include <QDateTime>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>
#include <thread>
#include <vector>

namespace orvane {

/// What a submission is made with. All of it outlives the pipeline and may be used from any thread.
struct SubmitServices {
    StorageManager& storage;
    WindowDiscovery& discovery;
    ScreenCapture& screenCapture;
    Displays& displays;
    const PngWriter& pngWriter;
    const TextRecognizer& textRecognizer;
    Clipboard& clipboard;
    const PlatformWords& words;
    /// Without one nothing can be sent, and the clipboard is used in its place.
    DirectSender* directSender = nullptr;
    std::function<void(std::chrono::milliseconds)> sleep = [](std::chrono::milliseconds time) {
        std::this_thread::sleep_for(time);
    };
    std::function<QDateTime()> clock = [] { return QDateTime::currentDateTime(); };
};

/// Turns marks into a session: a folder with annotated pictures of the displays, pictures of the regions, the
/// text in them and a manifest, and something on the clipboard or in another application. Needs a
/// QGuiApplication.
class SubmitPipeline {
public:
    explicit SubmitPipeline(SubmitServices services);

    /// The overlay has just been told to leave the screen. `captured` is called once on the caller's thread
    /// as soon as the screen has been looked at, whatever came of that. Nothing, and no call, where there are
    /// no markers. A display or a file that fails is logged and the rest goes on. Any thread; blocks for as
    /// long as it all takes.
    std::optional<SubmitResult> submit(const SubmitRequest& request, const std::function<void()>& captured);

    /// Makes the small picture of the session. Any thread; blocks.
    void generateThumbnail(const SubmitResult& result) const;

private:
    struct MarkedDisplay;

    std::vector<Display> listDisplays() const;
    std::vector<MarkedDisplay> capture(const std::vector<Display>& displays, SubmitResult& result) const;
    void addCapture(SubmitResult& result, const MarkedDisplay& marked, std::size_t displayCount,
                    const MarkupModes& modes, const QString& folder) const;
    void saveOcrText(SubmitResult& result, const MarkupModes& modes, const QString& folder) const;
    void handOver(SubmitResult& result, const SubmitRequest& request, const QString& folder) const;
    SendOutcome runDirectSend(const SubmitResult& result, const MarkupModes& modes, const SendTarget& target,
                              const QString& folder) const;
    void saveManifest(const SubmitResult& result, const MarkupModes& modes, const QString& folder) const;

    SubmitServices m_services;
};

} // namespace orvane
