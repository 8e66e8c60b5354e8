#include "OrvaneCore/marking/overlay/OverlayBarTexts.h"

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

QString sendTitle(bool directSend, const std::optional<SendTarget>& target) {
    if (!directSend)
        return u"Send (S)"_s;
    return target ? u"Send → "_s + target->name + u" (S)"_s : u"Send: no app (S)"_s;
}

} // namespace

OverlayBarTexts overlayBarTexts(const MarkupModes& modes, bool markupMode,
                                const std::optional<SendTarget>& target) {
    return {
        .cancel = u"Cancel (esc)"_s,
        .image = modes.image ? u"Image Only ON (I)"_s : u"Image Only (I)"_s,
        .markup = markupMode ? u"Markup ON (M)"_s : u"Markup (M)"_s,
        .spotlight = modes.spotlight ? u"Spotlight ON (B)"_s : u"Spotlight (B)"_s,
        .ocr = modes.ocr ? u"OCR ON (O)"_s : u"OCR (O)"_s,
        .send = sendTitle(modes.directSend, target),
        .sendHint = modes.directSend ? u"◂ A · D ▸  switch app  ·  "_s : QString(),
        .submit = u"Submit  ↩"_s,
    };
}

namespace overlay_bar_tips {

QString cancel() {
    return u"Leave without capturing anything. All marks are dropped."_s;
}

QString image() {
    return u"Copy the picture of a region alone, without paths and notes."_s;
}

QString markup() {
    return u"Draw arrows, boxes, highlights and text on the screen."_s;
}

QString spotlight() {
    return u"Blur everything outside the regions in the captured picture."_s;
}

QString ocr() {
    return u"Read the text in the regions and copy it."_s;
}

QString send() {
    return u"Paste the result into an application at once."_s;
}

QString submit() {
    return u"Capture the regions, and copy what your agent needs to find them."_s;
}

} // namespace overlay_bar_tips

} // namespace orvane
