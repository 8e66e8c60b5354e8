#include "OrvaneCore/marking/submit/SnapshotManifest.h"

#include "OrvaneCore/marking/submit/DisplayNumbers.h"
#include "OrvaneCore/marking/submit/SubmitTexts.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

// No desktop has more points or pixels, and a 64-bit number holds it.
constexpr double largestNumber = 1e18;

/// A whole number from any other, "0" from what is none.
QString wholeText(double value) {
    const double number = std::isnan(value) ? 0 : std::clamp(value, -largestNumber, largestNumber);
    return QString::number(static_cast<qint64>(number));
}

QString roundText(double value) {
    return wholeText(std::round(value));
}

/// "300×200".
QString sizeText(const QString& width, const QString& height) {
    return width + u'\u00D7' + height;
}

QString wholeSize(const QSizeF& size) {
    return sizeText(wholeText(size.width()), wholeText(size.height()));
}

QString roundSize(const QSizeF& size) {
    return sizeText(roundText(size.width()), roundText(size.height()));
}

QString wholePoint(const QPointF& point) {
    return u'(' + wholeText(point.x()) + u", "_s + wholeText(point.y()) + u')';
}

QString percent(double part, double whole) {
    return roundText(100 * part / whole) + u'%';
}

/// " @2× (...)" and the like begin with this.
QString scaleMark(qreal scale) {
    return u" @"_s + scaleStr(scale) + u'\u00D7';
}

/// Writes the text piece by piece. All of it is joined: labels may hold anything, place markers too.
class ManifestText {
public:
    ManifestText(const SubmitResult& result, const std::vector<Display>& displays, const QString& timestamp)
        : m_result(result)
        , m_displays(displays)
        , m_sorted(activeDisplaysSorted(displays))
        , m_timestamp(timestamp)
        , m_notes(markupNotes(result.annotations)) {}

    QString header(bool spotlight) const {
        const QString privacy =
            spotlight ? u"\n- **Privacy:** spotlight (background blurred \u2014 rely on region crops for "
                        "detail)"_s
                      : QString();
        return u"# Orvane Session\n\n- **Session ID:** "_s + m_result.sessionId + u"\n- **Timestamp:** "_s +
               m_timestamp + u"\n- **Type:** snapshot\n- **Annotated screenshot:** display-annotated.png"_s +
               privacy +
               u"\n- **Coordinates:** per-display, top-left origin, in **points** (x \u2192 right, y \u2192 "
               "down). Each region's position is relative to **its own display's top-left corner** (display "
               "index in the Displays list / per region); percentages are of that display. Region crops "
               "(`region-N.png`) are saved at **native pixels = points \u00D7 the display's backing scale**, "
               "so both pt and px sizes are given per region. The global desktop position per region is for "
               "automation (macOS click coordinates are points).\n\n"_s;
    }

    QString note() const {
        const QString text = drawingsNote(m_result.annotations);
        return text.isEmpty() ? text : u"> "_s + text + u'\n';
    }

    QString displays() const {
        if (m_sorted.size() < 2)
            return {};
        QString text = u"## Displays\n\n"_s;
        for (const Display& display : m_sorted) {
            const QRectF& bounds = display.boundsPoints;
            text += u"- **Display "_s + number(display.id) + u"**"_s + mainMark(display.id, u" (main)"_s) +
                    u": "_s + wholeSize(bounds.size()) + u" pt"_s;
            if (display.scale != 1)
                text +=
                    scaleMark(display.scale) + u" ("_s + roundSize(bounds.size() * display.scale) + u" px)"_s;
            text += u" \u2014 global desktop origin "_s + wholePoint(bounds.topLeft()) + u'\n';
        }
        return text + u'\n';
    }

    QString regions() const {
        QString text = u"## Annotations\n\n"_s;
        bool isFirst = true;
        for (const Marker& marker : m_result.allMarkers) {
            if (!isFirst)
                text += u"---\n\n"_s;
            isFirst = false;
            text += region(marker);
        }
        return text;
    }

    QString files() const {
        QString text = u"## Files\n\n| File | Description |\n|------|-------------|\n"
                       "| display-annotated.png | Full display with all markers overlaid |\n"_s;
        for (const Marker& marker : m_result.allMarkers)
            text += u"| "_s + regionFileName(marker.index) + u" | Crop: "_s +
                    (marker.label.isEmpty() ? u"Region "_s + QString::number(marker.index) : marker.label) +
                    u" |\n"_s;
        if (std::any_of(m_result.allMarkers.begin(), m_result.allMarkers.end(),
                        [](const Marker& marker) { return !recognized(marker).isEmpty(); }))
            text += u"| ocr.txt | Recognized text from all regions |\n"_s;
        return text + u"| SESSION.md | This file |\n"_s;
    }

    QString timeline() const {
        return u"\n## Timeline\n\n| Time | Event | Details |\n|------|-------|---------|\n| "_s +
               m_timestamp + u" | snapshot | "_s + QString::number(m_result.allMarkers.size()) +
               u" annotation(s) captured |\n"_s;
    }

private:
    static QString recognized(const Marker& marker) { return marker.recognizedText.value_or(QString()); }

    QString number(quint32 displayId) const { return QString::number(displayNumber(m_sorted, displayId)); }

    QString mainMark(quint32 displayId, const QString& mark) const {
        return isMainDisplay(m_displays, displayId) ? mark : QString();
    }

    QString region(const Marker& marker) const {
        const bool isOnDisplay = marker.displayId && marker.displayBounds;
        const QString global = wholePoint(marker.rect.topLeft()) + u' ' + wholeSize(marker.rect.size());
        QString text = u"### ["_s + QString::number(marker.index) + u"] "_s +
                       marker.windowAppName.value_or(u"Unknown"_s) + u"\n\n**Description:** "_s +
                       marker.label + u"\n\n"_s;
        if (const auto notes = m_notes.find(marker.index); notes != m_notes.end())
            text += u"**User markup:** "_s + notes->second + u"\n\n"_s;
        text += u"**Region image:** "_s + regionFileName(marker.index) + u"\n\n"_s;
        if (isOnDisplay)
            text += placeOnDisplay(marker, *marker.displayId, *marker.displayBounds);
        else
            text += u"**Screen coordinates (global desktop):** "_s + global + u"\n\n"_s;
        if (marker.windowBounds)
            text += u"**Window:** "_s + marker.windowAppName.value_or(u"window"_s) + u" \u2014 "_s +
                    wholeSize(marker.windowBounds->size()) + u"\n\n"_s;
        if (const auto& rect = marker.windowRelativeRect)
            text += u"**Window-relative:** "_s + wholePoint(rect->topLeft()) + u' ' +
                    wholeText(rect->width()) + u'x' + wholeText(rect->height()) + u"\n\n"_s;
        if (isOnDisplay)
            text += u"**Global desktop position (for automation):** "_s + global + u" pt\n\n"_s;
        if (const QString read = recognized(marker); !read.isEmpty())
            text += u"**Recognized text:**\n\n```\n"_s + read + u"\n```\n\n"_s;
        return text;
    }

    QString placeOnDisplay(const Marker& marker, quint32 displayId, const QRectF& bounds) const {
        const QPointF offset = marker.rect.topLeft() - bounds.topLeft();
        const QString display = u"Display "_s + number(displayId);
        return u"**Display:** "_s + display + u" ("_s + wholeSize(bounds.size()) +
               mainMark(displayId, u", main"_s) + u")\n\n**Position on "_s + display + u":** ("_s +
               roundText(offset.x()) + u", "_s + roundText(offset.y()) + u"), "_s +
               regionSize(marker, displayId) + u" from the display's top-left\n\n**On display:** "_s +
               percent(offset.x(), bounds.width()) + u" across \u00D7 "_s +
               percent(offset.y(), bounds.height()) + u" down from the top-left; spans "_s +
               percent(marker.rect.width(), bounds.width()) + u" \u00D7 "_s +
               percent(marker.rect.height(), bounds.height()) + u" of the display\n\n"_s;
    }

    QString regionSize(const Marker& marker, quint32 displayId) const {
        const qreal scale = backingScale(m_displays, displayId);
        const auto crop = m_result.cropPixels.find(marker.index);
        const QSizeF pixels =
            crop == m_result.cropPixels.end() ? marker.rect.size() * scale : QSizeF(crop->second);
        const QString inPixels = roundSize(pixels) + u" px"_s;
        const QString file = u" ("_s + regionFileName(marker.index) + u')';
        return scale == 1 ? inPixels + file
                          : roundSize(marker.rect.size()) + u" pt = "_s + inPixels + scaleMark(scale) + file;
    }

    const SubmitResult& m_result;
    const std::vector<Display>& m_displays;
    std::vector<Display> m_sorted;
    QString m_timestamp;
    std::map<int, QString> m_notes;
};

} // namespace

QString snapshotManifest(const SubmitResult& result, const MarkupModes& modes,
                         const std::vector<Display>& displays, const QDateTime& timestamp) {
    const ManifestText text(result, displays, timestamp.toUTC().toString(Qt::ISODate));
    return text.header(modes.spotlight) + text.note() + text.displays() + text.regions() + text.files() +
           text.timeline();
}

} // namespace orvane
