#include "OrvaneCore/marking/overlay/SubmitToast.h"

#include <QTextBoundaryFinder>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

/// Characters as a reader counts them: a letter with its accents is one.
qsizetype characterCount(const QString& text) {
    QTextBoundaryFinder boundaries(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (boundaries.toNextBoundary() != -1)
        ++count;
    return count;
}

SubmitToast sendToast(const QString& target, const SendOutcome& outcome, bool imageMode) {
    if (!outcome.activated) {
        return {.title = u"Couldn't reach "_s + target,
                .subtitle = u"Copied paths to clipboard instead"_s,
                .icon = u"exclamationmark.triangle.fill"_s};
    }
    return {.title = u"Sent %1 region(s) → "_s.arg(outcome.sentCount) + target,
            .subtitle = imageMode ? u"Image pasted (no metadata)"_s : u"Images + metadata pasted"_s,
            .icon = u"paperplane.fill"_s};
}

} // namespace

SubmitToast submitToast(int markerCount, const MarkupModes& modes, const std::optional<QString>& targetName,
                        const std::optional<SendOutcome>& outcome,
                        const std::optional<QString>& copiedOcrText, const PlatformWords& words) {
    if (modes.directSend && targetName && outcome)
        return sendToast(*targetName, *outcome, modes.image);
    if (modes.image) {
        return {.title = u"Image copied"_s,
                .subtitle = words.keyInWindows(u"V") + u" to paste anywhere"_s,
                .icon = u"doc.on.clipboard.fill"_s};
    }
    if (copiedOcrText) {
        return {.title = u"Text copied"_s,
                .subtitle = u"%1 character(s) recognized"_s.arg(characterCount(*copiedOcrText)),
                .icon = u"text.viewfinder"_s};
    }
    if (!modes.ocr) {
        return {.title = u"%1 region(s) captured"_s.arg(markerCount),
                .subtitle = u"Paste into your agent to share context"_s,
                .icon = u"checkmark.circle.fill"_s};
    }
    return {.title = u"No text found"_s,
            .subtitle = u"Copied screenshot instead"_s,
            .icon = u"text.viewfinder"_s};
}

SubmitToast captureFailedToast(const QString& error) {
    return {
        .title = u"Nothing was captured"_s, .subtitle = error, .icon = u"exclamationmark.triangle.fill"_s};
}

SubmitToast readingToast() {
    return {.title = u"Reading text…"_s,
            .subtitle = u"This can take some seconds"_s,
            .icon = u"text.viewfinder"_s};
}

} // namespace orvane
