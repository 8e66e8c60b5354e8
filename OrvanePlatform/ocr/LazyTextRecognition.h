#pragma once

#include "OrvaneCore/base/Clock.h"
#include "OrvaneCore/base/IdleRelease.h"
#include "OrvaneCore/platform/TextRecognitionBackend.h"
#include "OrvanePlatform/modules/ModuleLoader.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>

namespace orvane::ocr {

/// Text recognition from the module library "orvane-ocr", which is loaded on the first call. Its engines,
/// which hold some hundred megabytes, are freed two minutes after their last use; the next call makes new
/// ones.
///
/// What is not installed is not an error of each picture: recognize() throws for it once in the life of this
/// object, so that the log says it once, and from then on finds nothing. The next call looks again.
///
/// Not for static storage: what the module loaded has to be released before Tesseract's own static storage
/// goes.
class LazyTextRecognition final : public TextRecognitionBackend {
public:
    static constexpr std::chrono::minutes timeToKeep{2};

    /// `moduleFolder`: where the module lies; by default where the program's modules are, which is asked for
    /// on the first call. Reads by the machine's clock.
    explicit LazyTextRecognition(std::optional<QString> moduleFolder = {});
    /// The clock outlives this object.
    explicit LazyTextRecognition(Clock& clock, std::optional<QString> moduleFolder = {});

    /// Whether there are engines, or something that would make some.
    bool isLoaded();

    QStringList supportedLanguages() override;
    PictureText recognize(const QImage& picture, const QStringList& languages,
                          const IsTimeUp& isTimeUp) override;

private:
    /// Whoever holds it keeps it, even when it is released meanwhile. Throws when it cannot be had.
    std::shared_ptr<TextRecognitionBackend> backend();
    void release();
    PictureText nothingBut(const QString& reason);

    std::optional<QString> m_moduleFolder;
    std::mutex m_mutex;
    std::shared_ptr<TextRecognitionBackend> m_backend;
    bool m_saidWhatIsMissing = false;
    SystemClock m_systemClock;
    /// Last, so that its thread ends first.
    IdleRelease m_idle;
};

} // namespace orvane::ocr
