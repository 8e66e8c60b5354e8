#pragma once

#include "OrvaneCore/marking/Annotation.h"
#include "OrvaneCore/marking/Marker.h"
#include "OrvaneCore/send/SendTarget.h"

#include <QByteArray>
#include <QSize>
#include <QString>

#include <map>
#include <optional>
#include <vector>

namespace orvane {

/// A display that was captured, with what was marked on it.
struct CaptureWithMarkers {
    /// The application under its first marker; "Display" when there is none.
    QString appName = {};
    /// "Display " and the id.
    QString windowTitle = {};
    quint32 displayId = 0;
    /// The annotated picture as it was written.
    QByteArray pngData = {};
    /// The display's size in points, truncated.
    int width = 0;
    int height = 0;
    std::vector<Marker> markers = {};
};

/// What came of submitted marks.
struct SubmitResult {
    /// The order is that of capture.
    std::vector<CaptureWithMarkers> captures;
    /// Why a display could not be captured, for the human: the last one where there are several; nothing
    /// where all could.
    std::optional<QString> captureError = {};
    /// Markers with all that was found out about them.
    std::vector<Marker> allMarkers;
    /// The name of the session's folder.
    QString sessionId;
    /// The recognised text, when that is what went to the clipboard.
    std::optional<QString> copiedOcrText;
    /// Annotations with their regions and displays.
    std::vector<Annotation> annotations;
    /// The index of the region, and the size of its picture in pixels.
    std::map<int, QSize> cropPixels;
    /// Nothing when nothing was to be sent.
    std::optional<SendOutcome> sendOutcome;
};

/// The file of a region's picture in the session's folder.
inline QString regionFileName(int index) {
    return QStringLiteral("region-") + QString::number(index) + QStringLiteral(".png");
}

/// The file of a display's annotated picture, where so many displays have one.
inline QString displayFileName(std::size_t displayCount, quint32 displayId) {
    const QString stem = QStringLiteral("display-annotated");
    return (displayCount < 2 ? stem : stem + u'-' + QString::number(displayId)) + QStringLiteral(".png");
}

/// That of the first display that was captured.
inline QString firstDisplayFileName(const SubmitResult& result) {
    return displayFileName(result.captures.size(),
                           result.captures.empty() ? 0 : result.captures.front().displayId);
}

} // namespace orvane
