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

/// Writes the text piece by piece. Labels may hold anything, place markers too: a piece gets all that it
/// holds in one call of arg().
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
        return u"# Orvane Session\n\n"
               "- **Session ID:** %1\n"
               "- **Timestamp:** %2\n"
               "- **Type:** snapshot\n"
               "- **Annotated screenshot:** display-annotated.png%3\n"
               "- **Coordinates:** per-display, top-left origin, in **points** (x \u2192 right, y \u2192 "
               "down). Each region's position is relative to **its own display's top-left corner** (display "
               "index in the Displays list / per region); percentages are of that display. Region crops "
               "(`region-N.png`) are saved at **native pixels = points \u00D7 the display's backing scale**, "
               "so both pt and px sizes are given per region. The global desktop position per region is for "
               "automation (macOS click coordinates are points).\n\n"_s.arg(m_result.sessionId, m_timestamp,
                                                                            privacy);
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
            const QString pixels =
                display.scale == 1
                    ? QString()
                    : u"%1 (%2 px)"_s.arg(scaleMark(display.scale), roundSize(bounds.size() * display.scale));
            text += u"- **Display %1**%2: %3 pt%4 \u2014 global desktop origin %5\n"_s.arg(
                number(display.id), mainMark(display.id, u" (main)"_s), wholeSize(bounds.size()), pixels,
                wholePoint(bounds.topLeft()));
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
        for (const Marker& marker : m_result.allMarkers) {
            text += u"| %1 | Crop: %2 |\n"_s.arg(
                regionFileName(marker.index),
                marker.label.isEmpty() ? u"Region "_s + QString::number(marker.index) : marker.label);
        }
        if (std::any_of(m_result.allMarkers.begin(), m_result.allMarkers.end(),
                        [](const Marker& marker) { return !recognized(marker).isEmpty(); }))
            text += u"| ocr.txt | Recognized text from all regions |\n"_s;
        return text + u"| SESSION.md | This file |\n"_s;
    }

    QString timeline() const {
        return u"\n## Timeline\n\n| Time | Event | Details |\n|------|-------|---------|\n"
               "| %1 | snapshot | %2 annotation(s) captured |\n"_s.arg(
                   m_timestamp, QString::number(m_result.allMarkers.size()));
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
        QString text = u"### [%1] %2\n\n**Description:** %3\n\n"_s.arg(
            QString::number(marker.index), marker.windowAppName.value_or(u"Unknown"_s), marker.label);
        if (const auto notes = m_notes.find(marker.index); notes != m_notes.end())
            text += u"**User markup:** "_s + notes->second + u"\n\n"_s;
        text += u"**Region image:** "_s + regionFileName(marker.index) + u"\n\n"_s;
        if (isOnDisplay) {
            text += placeOnDisplay(marker, *marker.displayId, *marker.displayBounds);
        } else {
            text += u"**Screen coordinates (global desktop):** "_s + global + u"\n\n"_s;
        }
        if (marker.windowBounds) {
            text += u"**Window:** %1 \u2014 %2\n\n"_s.arg(marker.windowAppName.value_or(u"window"_s),
                                                          wholeSize(marker.windowBounds->size()));
        }
        if (const auto& rect = marker.windowRelativeRect) {
            text += u"**Window-relative:** %1 %2x%3\n\n"_s.arg(
                wholePoint(rect->topLeft()), wholeText(rect->width()), wholeText(rect->height()));
        }
        if (isOnDisplay)
            text += u"**Global desktop position (for automation):** "_s + global + u" pt\n\n"_s;
        if (const QString read = recognized(marker); !read.isEmpty())
            text += u"**Recognized text:**\n\n```\n"_s + read + u"\n```\n\n"_s;
        return text;
    }

    QString placeOnDisplay(const Marker& marker, quint32 displayId, const QRectF& bounds) const {
        const QPointF offset = marker.rect.topLeft() - bounds.topLeft();
        const QString display = u"Display "_s + number(displayId);
        return u"**Display:** %1 (%2%3)\n\n"
               "**Position on %1:** (%4, %5), %6 from the display's top-left\n\n"
               "**On display:** %7 across \u00D7 %8 down from the top-left; spans %9 \u00D7 %10 of the "
               "display\n\n"_s.arg(
                   display, wholeSize(bounds.size()), mainMark(displayId, u", main"_s), roundText(offset.x()),
                   roundText(offset.y()), regionSize(marker, displayId), percent(offset.x(), bounds.width()),
                   percent(offset.y(), bounds.height()), percent(marker.rect.width(), bounds.width()),
                   percent(marker.rect.height(), bounds.height()));
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
