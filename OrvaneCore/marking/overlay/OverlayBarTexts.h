#pragma once

#include "OrvaneCore/marking/submit/SubmitRequest.h"

#include <QString>

#include <optional>

namespace orvane {

/// What the overlay's bar says.
struct OverlayBarTexts {
    QString cancel;
    QString image;
    QString markup;
    QString spotlight;
    QString ocr;
    QString send;
    /// Empty while there is no choice of applications.
    QString sendHint;
    QString submit;

    bool operator==(const OverlayBarTexts&) const = default;
};

/// The texts in that state. Pure.
OverlayBarTexts overlayBarTexts(const MarkupModes& modes, bool markupMode,
                                const std::optional<SendTarget>& target);

/// What the buttons of the bar do, for who points at one of them.
namespace overlay_bar_tips {

QString cancel();
QString image();
QString markup();
QString spotlight();
QString ocr();
QString send();
QString submit();

} // namespace overlay_bar_tips

} // namespace orvane
