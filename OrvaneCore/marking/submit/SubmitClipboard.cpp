#include "OrvaneCore/marking/submit/SubmitClipboard.h"

#include "OrvaneCore/marking/submit/SubmitTexts.h"

#include <QImage>

#include <utility>

namespace orvane {

ClipboardImageChoice clipboardImageChoice(const std::vector<Marker>& markers) {
    if (markers.empty())
        return FullDisplay();
    return RegionCrop{markers.back().index};
}

SubmitClipboard::SubmitClipboard(Clipboard& clipboard, const SubmitResult& result, const MarkupModes& modes,
                                 QString sessionDir, QString sessionPath)
    : m_clipboard(clipboard)
    , m_result(result)
    , m_modes(modes)
    , m_sessionDir(std::move(sessionDir))
    , m_sessionPath(std::move(sessionPath)) {}

void SubmitClipboard::copyToClipboard() const {
    if (m_result.copiedOcrText) {
        m_clipboard.writeText(*m_result.copiedOcrText);
    } else if (m_modes.image) {
        writeImageToClipboard();
    } else {
        writeText();
    }
}

void SubmitClipboard::writeImageToClipboard() const {
    const ClipboardImageChoice choice = clipboardImageChoice(m_result.allMarkers);
    const auto* crop = std::get_if<RegionCrop>(&choice);
    const QString file = crop != nullptr ? regionFileName(crop->index) : firstDisplayFileName(m_result);
    const QImage image(m_sessionDir + u'/' + file);
    if (image.isNull()) {
        writeText();
    } else {
        m_clipboard.writeImage(image);
    }
}

void SubmitClipboard::afterSend(const SendTarget& target, const SendOutcome& outcome) const {
    if (m_modes.image || target.kind == SendTargetKind::comms) {
        writeImageToClipboard();
    } else if (!outcome.activated) {
        writeText();
    }
}

void SubmitClipboard::writeText() const {
    m_clipboard.writeText(normalClipboardText(m_result, m_sessionPath, m_modes.spotlight));
}

} // namespace orvane
