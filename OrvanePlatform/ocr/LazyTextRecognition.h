#pragma once

#include "OrvaneCore/platform/TextRecognitionBackend.h"
#include "OrvanePlatform/modules/ModuleLoader.h"

#include <memory>
#include <mutex>
#include <optional>

namespace orvane::ocr {

/// Text recognition from the module library "orvane-ocr", which is loaded on the first call.
///
/// What is not installed is not an error of each picture: recognize() throws for it once in the life of this
/// object, so that the log says it once, and from then on finds nothing. The next call looks again.
///
/// Not for static storage: what the module loaded has to be released before Tesseract's own static storage
/// goes.
class LazyTextRecognition final : public TextRecognitionBackend {
public:
    /// `moduleFolder`: where the module lies; by default where the program's modules are, which is asked for
    /// on the first call.
    explicit LazyTextRecognition(std::optional<QString> moduleFolder = {});

    QStringList supportedLanguages() override;
    std::vector<TextLine> recognize(const QImage& picture, const QStringList& languages) override;

private:
    /// Null, or the exception, when it cannot be had.
    TextRecognitionBackend& backend();
    std::vector<TextLine> nothingBut(const QString& reason);

    std::optional<QString> m_moduleFolder;
    std::mutex m_mutex;
    std::unique_ptr<TextRecognitionBackend> m_backend;
    bool m_saidWhatIsMissing = false;
};

} // namespace orvane::ocr
