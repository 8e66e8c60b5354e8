#include "OrvaneCore/capture/OrvaneError.h"

namespace orvane {

OrvaneError OrvaneError::windowNotFound(qint64 windowId) {
    return {Case::windowNotFound,
            QStringLiteral("Window with ID %1 not found. Use list_windows to see available windows.")
                .arg(windowId)};
}

OrvaneError OrvaneError::invalidArguments(const QString& message) {
    return {Case::invalidArguments, QStringLiteral("Invalid arguments: ") + message};
}

OrvaneError OrvaneError::displayNotFound() {
    return {Case::displayNotFound, QStringLiteral("No display found for the specified region.")};
}

OrvaneError OrvaneError::captureEncodingFailed() {
    return {Case::captureEncodingFailed, QStringLiteral("Failed to encode screenshot as PNG.")};
}

OrvaneError OrvaneError::permissionDenied() {
    return {
        Case::permissionDenied,
        QStringLiteral("Screen Recording permission required. Open System Settings > Privacy & Security > "
                       "Screen Recording and enable Orvane.")};
}

QString OrvaneError::localizedDescription() const {
    return QStringLiteral("The operation could not be completed. (OrvaneError error %1.)")
        .arg(static_cast<int>(m_case));
}

} // namespace orvane
