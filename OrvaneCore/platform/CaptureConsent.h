#pragma once

#include "OrvaneCore/platform/PlatformError.h"

namespace orvane {

/// The human has not allowed that the screen is captured, on a desktop that asks. Not a fault of the desktop:
/// what comes next is the human's to say.
class CaptureConsentMissing : public PlatformError {
protected:
    using PlatformError::PlatformError;
};

/// The desktop is asking, and there is no answer yet. The question stays open; a later call finds the answer.
class CaptureAwaitsHuman final : public CaptureConsentMissing {
public:
    CaptureAwaitsHuman()
        : CaptureConsentMissing(
              QStringLiteral("The desktop is asking the human whether the screen may be captured. Ask them "
                             "to answer it, then try again.")) {}
};

/// The desktop has asked, and the answer was no.
class CaptureRefused final : public CaptureConsentMissing {
public:
    CaptureRefused()
        : CaptureConsentMissing(QStringLiteral(
              "The human has refused to let the screen be captured. Ask them before you try again.")) {}
};

} // namespace orvane
