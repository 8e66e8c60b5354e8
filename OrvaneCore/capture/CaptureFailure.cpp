#include "OrvaneCore/capture/CaptureFailure.h"

#include "OrvaneCore/capture/OrvaneError.h"

namespace orvane {

QString captureFailureText(const std::exception& error, const PlatformWords& words) {
    const auto* own = dynamic_cast<const OrvaneError*>(&error);
    if (own != nullptr && own->errorCase() == OrvaneError::Case::permissionDenied)
        return words.remedies.screen;
    return QString::fromUtf8(error.what());
}

} // namespace orvane
