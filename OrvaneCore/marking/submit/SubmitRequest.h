#pragma once

#include "OrvaneCore/marking/Annotation.h"
#include "OrvaneCore/marking/Marker.h"
#include "OrvaneCore/send/SendTarget.h"

#include <optional>
#include <vector>

namespace orvane {

/// What is to be done with the marks when they are submitted.
struct MarkupModes {
    /// The radius of the blur under `spotlight`, in pixels.
    static constexpr double spotlightSigma = 18;

    /// All but the regions is blurred.
    bool spotlight = false;
    /// The text in the regions is read, and goes to the clipboard.
    bool ocr = false;
    /// A picture without a text about it.
    bool image = false;
    /// Into another application instead of onto the clipboard.
    bool directSend = false;

    bool operator==(const MarkupModes&) const = default;
};

/// All that a submission depends on, at one moment.
struct SubmitRequest {
    std::vector<Marker> markers;
    std::vector<Annotation> annotations;
    MarkupModes modes;
    std::optional<SendTarget> sendTarget;
};

} // namespace orvane
