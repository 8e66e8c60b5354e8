#include "OrvaneCore/marking/submit/SubmitTexts.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace orvane {

using namespace Qt::StringLiterals;

// Labels and names may hold anything, place markers too: all texts are made by joining.

namespace {

bool hasText(const Marker& marker) {
    return marker.recognizedText && !marker.recognizedText->isEmpty();
}

QString described(const Annotation& annotation) {
    const QString kind = rawValue(annotation.kind);
    const bool isSpoken = annotation.kind == Annotation::Kind::text && !annotation.text.isEmpty();
    return isSpoken ? kind + u" \""_s + annotation.text + u'"' : kind;
}

/// Of the captures' applications, each name once.
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
        if (!marker.label.isEmpty())
            texts.append(number + u' ' + marker.label + u'\n' + *marker.recognizedText);
        else if (kept.size() > 1)
            texts.append(number + u'\n' + *marker.recognizedText);
        else
            texts.append(*marker.recognizedText);
    }
    return texts.join(u"\n\n"_s);
}

QString normalClipboardText(const SubmitResult& result, const QString& sessionPath, bool spotlight) {
    QString text = u"[Orvane] "_s + QString::number(result.allMarkers.size()) + u" annotation(s) on "_s +
                   joinedAppNames(result.captures) + u'\n';
    if (result.captures.size() < 2) {
        text += u"Screenshot: "_s + sessionPath + u'/' + firstDisplayFileName(result) + u'\n';
    } else {
        for (const CaptureWithMarkers& capture : result.captures) {
            text += u"Screenshot ("_s + capture.appName + u"): "_s + sessionPath + u'/' +
                    displayFileName(result.captures.size(), capture.displayId) + u'\n';
        }
    }
    text += u"Manifest: "_s + sessionPath + u"/SESSION.md\n"_s;
    if (spotlight)
        text += u"Privacy: spotlight on \u2014 background blurred; use region crops for detail.\n"_s;
    text += drawingsNote(result.annotations);
    const std::map<int, QString> notes = markupNotes(result.annotations);
    for (const Marker& marker : result.allMarkers)
        text += u"  ["_s + QString::number(marker.index) + u"] "_s +
                (marker.label.isEmpty() ? u"region"_s : marker.label) + u" \u2192 "_s + sessionPath + u'/' +
                regionFileName(marker.index) + markupSuffix(notes, marker.index) + u'\n';
    return text;
}

QString directSendMetadataText(const SubmitResult& result, const QString& sessionPath,
                               const QString& target) {
    QString text = u"[Orvane] "_s + QString::number(result.allMarkers.size()) +
                   u" region(s) sent as images \u2192 "_s + target + u'\n';
    text += drawingsNote(result.annotations);
    text += u"Attached images, in order:\n"_s;
    const std::map<int, QString> notes = markupNotes(result.annotations);
    for (std::size_t i = 0; i < result.allMarkers.size(); ++i) {
        const Marker& marker = result.allMarkers[i];
        text += u"  ["_s + QString::number(i) + u"] "_s + regionDescription(marker) +
                markupSuffix(notes, marker.index) + u'\n';
    }
    if (result.captures.size() < 2) {
        text += u"Full screenshot (not attached): {"_s + sessionPath + u'/' + firstDisplayFileName(result) +
                u"}\n"_s;
    } else {
        for (const CaptureWithMarkers& capture : result.captures) {
            text += u"Full screenshot ("_s + capture.appName + u", not attached): {"_s + sessionPath + u'/' +
                    displayFileName(result.captures.size(), capture.displayId) + u"}\n"_s;
        }
    }
    text += u"Manifest: {"_s + sessionPath + u"/SESSION.md}\n"_s;
    return text;
}

} // namespace orvane
