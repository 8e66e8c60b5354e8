#include "OrvaneCore/marking/submit/SubmitPipeline.h"

#include "OrvaneCore/base/AtomicFile.h"
#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/base/PlainFile.h"
#include "OrvaneCore/capture/CaptureFailure.h"
#include "OrvaneCore/drawing/RectEdges.h"
#include "OrvaneCore/marking/submit/DisplayNumbers.h"
#include "OrvaneCore/marking/submit/SnapshotManifest.h"
#include "OrvaneCore/marking/submit/SubmitClipboard.h"
#include "OrvaneCore/marking/submit/SubmitPictures.h"
#include "OrvaneCore/marking/submit/SubmitTexts.h"
#include "OrvaneCore/storage/ThumbnailCache.h"

#include <algorithm>
#include <exception>
#include <future>
#include <iterator>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// A display with markers, and what it showed.
struct SubmitPipeline::MarkedDisplay {
    Display display;
    /// Null when it could not be captured.
    QImage picture;
};

namespace {

// So that the overlay has left the screen.
constexpr auto hidingTime = 300ms;
// More than the largest crop takes.
constexpr qint64 largestCropBytes = qint64(512) * 1024 * 1024;

bool contains(const QRectF& bounds, const QPointF& point) {
    return RectEdges::between(bounds.topLeft(), bounds.bottomRight()).contains(point, 0);
}

void bindToWindows(std::vector<Marker>& markers, const std::vector<WindowInfo>& windows) {
    const auto boundsOf = [](const WindowInfo& window) {
        return QRectF(qreal(window.x), qreal(window.y), qreal(window.width), qreal(window.height));
    };
    for (Marker& marker : markers) {
        const auto window = std::find_if(windows.begin(), windows.end(), [&](const WindowInfo& candidate) {
            return contains(boundsOf(candidate), marker.rect.center());
        });
        if (window == windows.end())
            continue;
        const QRectF bounds = boundsOf(*window);
        marker.windowAppName = window->appName;
        marker.windowBounds = bounds;
        marker.windowRelativeRect = marker.rect.translated(-bounds.topLeft());
    }
}

void bindToRegions(std::vector<Annotation>& annotations, const std::vector<Marker>& markers) {
    for (Annotation& annotation : annotations)
        annotation.regionIndex = resolveRegionIndex(annotation, markers);
}

const Display* displayAt(const std::vector<Display>& displays, const QPointF& point) {
    const auto found = std::find_if(displays.begin(), displays.end(), [&point](const Display& display) {
        return contains(display.boundsPoints, point);
    });
    return found == displays.end() ? nullptr : &*found;
}

void bindToDisplays(SubmitResult& result, const std::vector<Display>& displays) {
    for (Marker& marker : result.allMarkers) {
        if (const Display* display = displayAt(displays, marker.rect.center())) {
            marker.displayId = display->id;
            marker.displayBounds = display->boundsPoints;
        }
    }
    for (Annotation& annotation : result.annotations) {
        if (const Display* display = displayAt(displays, annotation.anchorForRegion()))
            annotation.displayId = display->id;
    }
}

template <typename Mark>
std::vector<Mark> onDisplay(const std::vector<Mark>& marks, quint32 displayId) {
    std::vector<Mark> found;
    std::copy_if(marks.begin(), marks.end(), std::back_inserter(found),
                 [displayId](const Mark& mark) { return mark.displayId == displayId; });
    return found;
}

std::vector<Annotation> inRegion(const std::vector<Annotation>& annotations, int index) {
    std::vector<Annotation> found;
    std::copy_if(annotations.begin(), annotations.end(), std::back_inserter(found),
                 [index](const Annotation& annotation) { return annotation.regionIndex == index; });
    return found;
}

void save(const QString& folder, const QString& file, const QByteArray& bytes) {
    // No picture is no bytes, and an empty file helps nobody.
    if (bytes.isEmpty()) {
        logLine(u"save error "_s + file + u": the picture cannot be encoded"_s);
    } else if (!writeFileAtomically(folder + u'/' + file, bytes)) {
        logLine(u"save error "_s + file + u": the file cannot be written"_s);
    }
}

} // namespace

SubmitPipeline::SubmitPipeline(SubmitServices services)
    : m_services(std::move(services)) {}

std::optional<SubmitResult> SubmitPipeline::submit(const SubmitRequest& request,
                                                   const std::function<void()>& captured) {
    if (request.markers.empty())
        return std::nullopt;
    const StorageManager::SessionFolder session = m_services.storage.createSessionDir();
    SubmitResult result;
    result.sessionId = session.id;
    result.allMarkers = request.markers;
    result.annotations = request.annotations;
    for (Marker& marker : result.allMarkers)
        marker.recognizedText.reset();
    bindToWindows(result.allMarkers, m_services.discovery.listWindowsByZOrder());
    bindToRegions(result.annotations, result.allMarkers);

    m_services.sleep(hidingTime);
    const std::vector<Display> displays = getDisplays(listDisplays());
    bindToDisplays(result, displays);
    std::vector<MarkedDisplay> marked = capture(displays, result);
    captured();

    for (MarkedDisplay& display : marked) {
        if (!display.picture.isNull())
            addCapture(result, display, marked.size(), request.modes, session.dir);
        // Many large displays need not all be kept to the end.
        display.picture = QImage();
    }
    saveOcrText(result, request.modes, session.dir);
    handOver(result, request, session.dir);
    saveManifest(result, request.modes, session.dir);
    m_services.storage.updateLatestLink(session.dir);
    logLine(u"session "_s + session.id + u" saved ("_s + QString::number(result.captures.size()) +
            u" capture(s), "_s + QString::number(result.allMarkers.size()) + u" region(s))"_s);
    return result;
}

void SubmitPipeline::generateThumbnail(const SubmitResult& result) const {
    const QString folder = m_services.storage.sessionDir(result.sessionId);
    ThumbnailCache(m_services.pngWriter).generate(folder + u'/' + firstDisplayFileName(result), folder);
}

std::vector<Display> SubmitPipeline::listDisplays() const {
    try {
        return m_services.displays.list();
    } catch (const std::exception& error) {
        logLine(QString::fromUtf8(error.what()));
        return {};
    }
}

/// One after the other, and all before any of them is worked on, so that the screen is free again soon.
std::vector<SubmitPipeline::MarkedDisplay> SubmitPipeline::capture(const std::vector<Display>& displays,
                                                                   SubmitResult& result) const {
    std::vector<MarkedDisplay> marked;
    marked.reserve(displays.size());
    for (const Display& display : displays) {
        if (onDisplay(result.allMarkers, display.id).empty())
            continue;
        marked.push_back({.display = display, .picture = {}});
        try {
            marked.back().picture = m_services.screenCapture.captureDisplay(display.id, false);
        } catch (const std::exception& error) {
            result.captureError = captureFailureText(error, m_services.words);
            logLine(u"display capture error: "_s + QString::fromUtf8(error.what()));
        }
    }
    return marked;
}

void SubmitPipeline::addCapture(SubmitResult& result, const MarkedDisplay& marked, std::size_t displayCount,
                                const MarkupModes& modes, const QString& folder) const {
    const quint32 displayId = marked.display.id;
    const QRectF& bounds = marked.display.boundsPoints;
    const std::vector<Marker> markers = onDisplay(result.allMarkers, displayId);
    const std::vector<Annotation> annotations = onDisplay(result.annotations, displayId);
    const SubmitPictures pictures(marked.picture, bounds);
    const auto spotlight = modes.spotlight ? marker_painter::Spotlight::on : marker_painter::Spotlight::off;
    // On a second core where there is one; the regions are done meanwhile.
    std::future<QByteArray> annotated = std::async([&] {
        return m_services.pngWriter.encode(pictures.annotatedDisplay(markers, annotations, spotlight));
    });

    std::vector<std::pair<QString, QByteArray>> crops;
    crops.reserve(markers.size());
    for (Marker& marker : result.allMarkers) {
        if (marker.displayId != displayId)
            continue;
        QImage crop = pictures.regionCrop(marker.rect);
        if (crop.isNull())
            continue;
        if (modes.ocr) {
            const QString text = m_services.textRecognizer.recognizeJoined(crop);
            if (!text.isEmpty())
                marker.recognizedText = text;
        }
        pictures.drawOnCrop(crop, marker.rect, inRegion(result.annotations, marker.index));
        const QByteArray png = m_services.pngWriter.encode(crop);
        if (png.isEmpty())
            continue;
        crops.emplace_back(regionFileName(marker.index), png);
        result.cropPixels.insert_or_assign(marker.index, crop.size());
    }

    CaptureWithMarkers capture;
    capture.appName = markers.front().windowAppName.value_or(u"Display"_s);
    capture.windowTitle = u"Display "_s + QString::number(displayId);
    capture.displayId = displayId;
    capture.pngData = annotated.get();
    capture.width = static_cast<int>(bounds.width());
    capture.height = static_cast<int>(bounds.height());
    capture.markers = onDisplay(result.allMarkers, displayId);
    save(folder, displayFileName(displayCount, displayId), capture.pngData);
    for (const auto& [file, png] : crops)
        save(folder, file, png);
    result.captures.push_back(std::move(capture));
}

void SubmitPipeline::saveOcrText(SubmitResult& result, const MarkupModes& modes,
                                 const QString& folder) const {
    const QString text = aggregateOcrText(result.allMarkers);
    if (text.isEmpty())
        return;
    save(folder, u"ocr.txt"_s, text.toUtf8());
    if (modes.ocr)
        result.copiedOcrText = text;
}

void SubmitPipeline::handOver(SubmitResult& result, const SubmitRequest& request,
                              const QString& folder) const {
    const SubmitClipboard clipboard(m_services.clipboard, result, request.modes, folder,
                                    m_services.storage.displayPath(folder));
    if (request.modes.directSend && request.sendTarget && m_services.directSender != nullptr) {
        result.sendOutcome = runDirectSend(result, request.modes, *request.sendTarget, folder);
        clipboard.afterSend(*request.sendTarget, *result.sendOutcome);
    } else {
        clipboard.copyToClipboard();
    }
}

SendOutcome SubmitPipeline::runDirectSend(const SubmitResult& result, const MarkupModes& modes,
                                          const SendTarget& target, const QString& folder) const {
    std::vector<int> indices;
    indices.reserve(result.allMarkers.size());
    for (const Marker& marker : result.allMarkers)
        indices.push_back(marker.index);
    std::sort(indices.begin(), indices.end());
    std::vector<QByteArray> regions;
    regions.reserve(indices.size());
    for (const int index : indices) {
        if (const auto png = readPlainFile(folder + u'/' + regionFileName(index), largestCropBytes))
            regions.push_back(*png);
    }
    std::optional<QString> metadata;
    if (target.kind == SendTargetKind::ai && !modes.image)
        metadata = directSendMetadataText(result, m_services.storage.displayPath(folder), target.name);
    return m_services.directSender->send(regions, metadata, target);
}

void SubmitPipeline::saveManifest(const SubmitResult& result, const MarkupModes& modes,
                                  const QString& folder) const {
    const QString path = folder + u"/SESSION.md"_s;
    const QString text = snapshotManifest(result, modes, listDisplays(), m_services.clock());
    // Whether it was written does not matter: the line says where to look.
    static_cast<void>(writeFileAtomically(path, text.toUtf8()));
    logLine(u"SESSION.md saved to "_s + path);
}

} // namespace orvane
