#pragma once

#include "OrvaneCore/marking/submit/SubmitRequest.h"
#include "OrvaneCore/marking/submit/SubmitResult.h"
#include "OrvaneCore/platform/Clipboard.h"

#include <QString>

#include <variant>
#include <vector>

namespace orvane {

/// The picture of that region alone.
struct RegionCrop {
    int index = 0;

    bool operator==(const RegionCrop&) const = default;
};

/// The annotated picture of the first display.
struct FullDisplay {
    bool operator==(const FullDisplay&) const = default;
};

/// Which picture of a session goes onto the clipboard.
using ClipboardImageChoice = std::variant<RegionCrop, FullDisplay>;

/// The last region's, where there are any.
ClipboardImageChoice clipboardImageChoice(const std::vector<Marker>& markers);

/// What of a session goes onto the clipboard, its pictures being in its folder by now. Any thread.
class SubmitClipboard {
public:
    /// All that is referred to outlives this object. `sessionPath` is the folder as it is shown to people.
    SubmitClipboard(Clipboard& clipboard, const SubmitResult& result, const MarkupModes& modes,
                    QString sessionDir, QString sessionPath);

    /// The recognised text, or the picture in the image mode, or the text about where everything is.
    void copyToClipboard() const;

    /// The chosen picture; the text where it cannot be read.
    void writeImageToClipboard() const;

    /// Sets right what sending left there: the picture wherever no text goes with it anyway, else the text
    /// when the application was not reached.
    void afterSend(const SendTarget& target, const SendOutcome& outcome) const;

private:
    void writeText() const;

    Clipboard& m_clipboard;
    const SubmitResult& m_result;
    const MarkupModes& m_modes;
    QString m_sessionDir;
    QString m_sessionPath;
};

} // namespace orvane
