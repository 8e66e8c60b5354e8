#pragma once

#include "OrvaneCore/marking/submit/SubmitRequest.h"
#include "OrvaneCore/platform/PlatformWords.h"

#include <QString>

#include <optional>

namespace orvane {

/// What the user is told when marks have been submitted.
struct SubmitToast {
    QString title;
    QString subtitle;
    /// The name of a symbol.
    QString icon;

    bool operator==(const SubmitToast&) const = default;
};

/// `markerCount`, `modes` and `targetName` are those of the moment of submitting. `outcome` is what came of
/// the sending, nothing when nothing was to be sent; `copiedOcrText` the text on the clipboard, if the text
/// was what was copied.
SubmitToast submitToast(int markerCount, const MarkupModes& modes, const std::optional<QString>& targetName,
                        const std::optional<SendOutcome>& outcome,
                        const std::optional<QString>& copiedOcrText, const PlatformWords& words);

/// What the user is told when no display could be captured, and why.
SubmitToast captureFailedToast(const QString& error);

/// What the user is told while the text of the regions is read, which may take long.
SubmitToast readingToast();

} // namespace orvane
