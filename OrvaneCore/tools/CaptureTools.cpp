#include "OrvaneCore/tools/CaptureTools.h"

#include "OrvaneCore/base/TypedObject.h"
#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/tools/IntegerRect.h"
#include "OrvaneCore/tools/RegionLabels.h"
#include "OrvaneCore/tools/ToolResult.h"
#include "OrvaneCore/tools/WindowCrop.h"

#include <algorithm>
#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

const QLatin1String appNameKey("app_name");

/// Elements that lack something, or have it in another type, are left out.
std::vector<LabelledRegion> readRegions(const std::vector<QJsonObject>& objects) {
    std::vector<LabelledRegion> regions;
    regions.reserve(objects.size());
    for (const QJsonObject& object : objects) {
        const TypedObject typed(object);
        const auto rect = readIntegerRect(typed);
        const auto label = typed.string(QLatin1String("label"));
        if (rect && label)
            regions.push_back({*rect, *label});
    }
    return regions;
}

QString requireAppName(const QJsonObject& arguments) {
    const auto appName = TypedObject(arguments).string(appNameKey);
    if (!appName)
        throw OrvaneError::invalidArguments(u"app_name is required"_s);
    return *appName;
}

/// "300×200", or with another sign between the numbers.
QString sizeText(int width, int height, QChar sign) {
    return QString::number(width) + sign + QString::number(height);
}

QString isoTime(const QDateTime& time) {
    return time.toUTC().toString(Qt::ISODate);
}

} // namespace

CaptureTools::CaptureTools(WindowDiscovery& discovery, ScreenCapture& screenCapture,
                           TextRecognizer textRecognizer, StorageManager& storage, const PngWriter& pngWriter,
                           WallClock clock)
    : m_discovery(discovery)
    , m_screenCapture(screenCapture)
    , m_textRecognizer(textRecognizer)
    , m_clock(std::move(clock))
    , m_files(storage, pngWriter, m_clock) {
    storage.ensureDirectories();
}

QJsonObject CaptureTools::listWindows(const QJsonObject& /*arguments*/) {
    const std::vector<WindowInfo> windows = m_discovery.listWindows();
    // An empty list would be a lie where the desktop cannot be asked at all.
    const auto reason = windows.empty() ? m_discovery.unavailableReason() : std::nullopt;
    return reason ? toolError(*reason) : toolResult(QString::fromUtf8(encodeWindowInfos(windows)));
}

QJsonObject CaptureTools::activateWindow(const QJsonObject& arguments) {
    const auto appName = TypedObject(arguments).string(appNameKey);
    if (!appName)
        return toolError(u"app_name is required"_s);
    const ActivateResult result = m_discovery.activate(*appName);
    return result.success ? toolResult(result.message) : toolError(result.message);
}

QJsonObject CaptureTools::captureWindow(const QJsonObject& arguments) {
    const QString appName = requireAppName(arguments);
    const WindowInfo window = findWindow(appName, [&] {
        QStringList names;
        for (const WindowInfo& other : m_discovery.listWindows())
            names.append(other.appName);
        return u"No window found for '%1'. Available: %2"_s.arg(appName, joinedNames(names));
    });
    const WindowCapture captured = m_screenCapture.captureWindow(window.windowId, false);
    const EncodedCapture encoded = m_files.encodeAndSave(captured.image, appName);

    const QString text =
        u"Captured %1 — %2.\n"
        "windowId: %3  (pass to annotate_understanding as frame {\"type\":\"window\",\"windowId\":%3})\n"
        "Returned image: %4 px — measure any annotation coordinates in THIS image and pass these as the "
        "frame's imageWidth/imageHeight.\n"
        "Native window: %5 pt."_s.arg(window.appName, window.windowTitle, QString::number(window.windowId),
                                      sizeText(encoded.agentSize.width(), encoded.agentSize.height(), u'×'),
                                      sizeText(captured.width, captured.height, u'×'));
    return toolResultWithImage(text, encoded.agentPng);
}

QJsonObject CaptureTools::captureWindowRegion(const QJsonObject& arguments) {
    const TypedObject typed(arguments);
    const auto appName = typed.string(appNameKey);
    const auto rect = readIntegerRect(typed);
    if (!appName || !rect)
        throw OrvaneError::invalidArguments(u"app_name, x, y, width, height are all required"_s);
    const WindowInfo window = findWindow(*appName);
    const WindowCapture captured = m_screenCapture.captureWindow(window.windowId, false);
    const QImage crop = cropWindow(captured, rect->toRectF());
    const EncodedCapture encoded = m_files.encodeAndSave(crop, *appName, u"-region"_s);

    const QString text = u"Captured region %1 of %2 - %3. Returned image: %4 px.%5"_s.arg(
        rect->toString(), window.appName, window.windowTitle,
        sizeText(encoded.agentSize.width(), encoded.agentSize.height(), u'×'),
        recognizedTextIfRequested(arguments, crop));
    return toolResultWithImage(text, encoded.agentPng);
}

QJsonObject CaptureTools::captureRegion(const QJsonObject& arguments) {
    const auto rect = readIntegerRect(TypedObject(arguments));
    if (!rect)
        throw OrvaneError::invalidArguments(u"x, y, width, height are all required as integers"_s);
    const QImage image = m_screenCapture.captureRegion(rect->x, rect->y, rect->width, rect->height, false);
    const EncodedCapture encoded = m_files.encodeAndSave(image, std::nullopt, u"-region"_s);

    const QString text = u"Captured region (%1,%2) %3x%4. Returned image: %5 px.%6"_s.arg(
        QString::number(rect->x), QString::number(rect->y), QString::number(rect->width),
        QString::number(rect->height), sizeText(encoded.agentSize.width(), encoded.agentSize.height(), u'×'),
        recognizedTextIfRequested(arguments, image));
    return toolResultWithImage(text, encoded.agentPng);
}

QJsonObject CaptureTools::captureAnnotated(const QJsonObject& arguments) {
    const QString appName = requireAppName(arguments);
    const auto given = TypedObject(arguments).objects(QLatin1String("regions"));
    if (!given)
        throw OrvaneError::invalidArguments(u"regions array is required"_s);
    const WindowInfo window = findWindow(appName);
    const WindowCapture captured = m_screenCapture.captureWindow(window.windowId, false);

    const std::vector<LabelledRegion> regions = readRegions(*given);
    const EncodedCapture encoded =
        m_files.encodeAndSave(renderAnnotations(captured.image, regions, captured.width, captured.height),
                              appName, u"-annotated"_s);

    QString text = u"Captured %1 - %2 (%3) with %4 annotation(s):\n"_s.arg(
        window.appName, window.windowTitle, sizeText(captured.width, captured.height, u'x'),
        QString::number(regions.size()));
    for (std::size_t i = 0; i < regions.size(); ++i) {
        const auto& [rect, label] = regions[i];
        text += u"  [%1] %2 %3\n"_s.arg(QString::number(i + 1), rect.toString(), label);
    }
    return toolResultWithImage(text, encoded.agentPng);
}

QJsonObject CaptureTools::captureDiff(const QJsonObject& arguments) {
    const QString appName = requireAppName(arguments);
    const WindowInfo window = findWindow(appName);
    const WindowCapture captured = m_screenCapture.captureWindow(window.windowId, false);
    const EncodedCapture encoded = m_files.encode(captured.image);
    const PendingDiff latest{.agentPng = encoded.agentPng, .timestamp = m_clock()};
    const std::optional<PendingDiff> before = exchangeDiff(appName.toLower(), latest);
    m_files.save(encoded.fullPng, appName, before ? u"-after"_s : u"-before"_s);

    const QString size = sizeText(captured.width, captured.height, u'x');
    if (!before) {
        return toolResult(
            u"Stored 'before' snapshot of %1 (%2). Make your changes, then call capture_diff again with the "
            "same app_name to get the before/after comparison."_s.arg(window.appName, size));
    }
    return toolResultWithImages(u"BEFORE (%1) and AFTER (%2) of %3 (%4)"_s.arg(isoTime(before->timestamp),
                                                                               isoTime(latest.timestamp),
                                                                               window.appName, size),
                                before->agentPng, latest.agentPng);
}

WindowInfo CaptureTools::findWindow(const QString& appName, const std::function<QString()>& notFound) {
    const std::vector<WindowInfo> windows = m_discovery.findWindows(appName);
    if (windows.empty())
        throw OrvaneError::invalidArguments(notFound());
    return windows.front();
}

WindowInfo CaptureTools::findWindow(const QString& appName) {
    return findWindow(appName, [&] { return u"No window found for '"_s + appName + u"'"_s; });
}

QString CaptureTools::recognizedTextIfRequested(const QJsonObject& arguments, const QImage& picture) const {
    // Only the Boolean itself counts; anything else reads as false.
    if (!arguments.value(QLatin1String("ocr")).toBool())
        return {};
    const QString text = m_textRecognizer.recognizeJoined(picture, m_textRecognizer.budgetOfToolCall());
    return text.isEmpty() ? QString() : u"\n\nRecognized text:\n"_s + text;
}

std::optional<CaptureTools::PendingDiff> CaptureTools::exchangeDiff(const QString& key,
                                                                    const PendingDiff& latest) {
    const std::scoped_lock lock(m_mutex);
    if (m_diffStore.contains(key))
        return m_diffStore.take(key);
    m_diffStore.insert(key, latest);
    return std::nullopt;
}

} // namespace orvane
