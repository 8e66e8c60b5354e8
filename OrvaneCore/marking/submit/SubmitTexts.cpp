#include "OrvaneCore/marking/submit/SubmitTexts.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace orvane {

using namespace Qt::StringLiterals;

// Labels and names may hold anything, place markers too: a text gets all that it holds in one call of arg().

namespace {

bool hasText(const Marker& marker) {
    return marker.recognizedText && !marker.recognizedText->isEmpty();
}

QString described(const Annotation& annotation) {
    const QString kind = rawValue(annotation.kind);
    const bool isSpoken = annotation.kind == Annotation::Kind::text && !annotation.text.isEmpty();
    return isSpoken ? kind + u" \""_s + annotation.text + u'"' : kind;
}

/// The names of the captures' applications, each once.
QString joinedAppNames(const std::vector<CaptureWithMarkers>& captures) {
    QStringList names;
    for (const CaptureWithMarkers& capture : captures)
        names.append(capture.appName);
    names.removeDuplicates();
    return names.join(u", "_s);
}

/// The end of a region's line; empty where nothing was drawn in it.
QString markupSuffix(const std::map<int, QString>& notes, int index) {
    const auto found = notes.find(index);
    return found == notes.end() ? QString() : u" \u2014 markup: "_s + found->second;
}

QString regionDescription(const Marker& marker) {
    if (!marker.label.isEmpty())
        return marker.label;
    const QString app = marker.windowAppName.value_or(QString());
    return app.isEmpty() || app == u"Unknown" ? u"region"_s : u"region in "_s + app;
}

} // namespace

QString drawingsNote(const std::vector<Annotation>& annotations) {
    return annotations.empty()
               ? QString()
               : u"Note: arrows, boxes, ellipses, highlights, and text in these images are user "
                 "annotations added with Orvane \u2014 not part of the captured UI.\n"_s;
}

std::map<int, QString> markupNotes(const std::vector<Annotation>& annotations) {
    std::map<int, QString> notes;
    for (const Annotation& annotation : annotations) {
        if (!annotation.regionIndex)
            continue;
        QString& text = notes[*annotation.regionIndex];
        if (!text.isEmpty())
            text += u"; "_s;
        text += described(annotation);
    }
    return notes;
}

QString aggregateOcrText(const std::vector<Marker>& markers) {
    std::vector<Marker> kept;
    std::copy_if(markers.begin(), markers.end(), std::back_inserter(kept), hasText);
    std::stable_sort(kept.begin(), kept.end(),
                     [](const Marker& left, const Marker& right) { return left.index < right.index; });
    QStringList texts;
    for (const Marker& marker : kept) {
        const QString number = u'[' + QString::number(marker.index) + u']';
        if (!marker.label.isEmpty()) {
            texts.append(number + u' ' + marker.label + u'\n' + *marker.recognizedText);
        } else if (kept.size() > 1) {
            texts.append(number + u'\n' + *marker.recognizedText);
        } else {
            texts.append(*marker.recognizedText);
        }
    }
    return texts.join(u"\n\n"_s);
}

QString normalClipboardText(const SubmitResult& result, const QString& sessionPath, bool spotlight) {
    QString text = u"[Orvane] %1 annotation(s) on %2\n"_s.arg(QString::number(result.allMarkers.size()),
                                                              joinedAppNames(result.captures));
    if (result.captures.size() < 2) {
        text += u"Screenshot: %1/%2\n"_s.arg(sessionPath, firstDisplayFileName(result));
    } else {
        for (const CaptureWithMarkers& capture : result.captures) {
            text += u"Screenshot (%1): %2/%3\n"_s.arg(
                capture.appName, sessionPath, displayFileName(result.captures.size(), capture.displayId));
        }
    }
    text += u"Manifest: %1/SESSION.md\n"_s.arg(sessionPath);
    if (spotlight)
        text += u"Privacy: spotlight on \u2014 background blurred; use region crops for detail.\n"_s;
    text += drawingsNote(result.annotations);
    const std::map<int, QString> notes = markupNotes(result.annotations);
    for (const Marker& marker : result.allMarkers) {
        text += u"  [%1] %2 \u2192 %3/%4%5\n"_s.arg(
            QString::number(marker.index), marker.label.isEmpty() ? u"region"_s : marker.label, sessionPath,
            regionFileName(marker.index), markupSuffix(notes, marker.index));
    }
    return text;
}

QString directSendMetadataText(const SubmitResult& result, const QString& sessionPath,
                               const QString& target) {
    QString text = u"[Orvane] %1 region(s) sent as images \u2192 %2\n"_s.arg(
        QString::number(result.allMarkers.size()), target);
    text += drawingsNote(result.annotations);
    text += u"Attached images, in order:\n"_s;
    const std::map<int, QString> notes = markupNotes(result.annotations);
    for (std::size_t i = 0; i < result.allMarkers.size(); ++i) {
        const Marker& marker = result.allMarkers[i];
        text += u"  [%1] %2%3\n"_s.arg(QString::number(i), regionDescription(marker),
                                       markupSuffix(notes, marker.index));
    }
    if (result.captures.size() < 2) {
        text += u"Full screenshot (not attached): {%1/%2}\n"_s.arg(sessionPath, firstDisplayFileName(result));
    } else {
        for (const CaptureWithMarkers& capture : result.captures) {
            text += u"Full screenshot (%1, not attached): {%2/%3}\n"_s.arg(
                capture.appName, sessionPath, displayFileName(result.captures.size(), capture.displayId));
        }
    }
    text += u"Manifest: {%1/SESSION.md}\n"_s.arg(sessionPath);
    return text;
}

} // namespace orvane
