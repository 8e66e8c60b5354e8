#include "OrvanePlatform/ocr/LazyTextRecognition.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/ocr/TextRecognitionModule.h"

#include <utility>

namespace orvane::ocr {

using namespace Qt::StringLiterals;

LazyTextRecognition::LazyTextRecognition(std::optional<QString> moduleFolder)
    : m_moduleFolder(std::move(moduleFolder))
    , m_idle(m_systemClock, timeToKeep, [this] { release(); }) {}

LazyTextRecognition::LazyTextRecognition(Clock& clock, std::optional<QString> moduleFolder)
    : m_moduleFolder(std::move(moduleFolder))
    , m_idle(clock, timeToKeep, [this] { release(); }) {}

std::shared_ptr<TextRecognitionBackend> LazyTextRecognition::backend() {
    const std::lock_guard lock(m_mutex);
    if (!m_backend) {
        const modules::ModuleLoader loader(m_moduleFolder ? *m_moduleFolder
                                                          : modules::ModuleLoader::standardFolder());
        m_backend = loader.load<TextRecognitionModule>(u"orvane-ocr"_s).makeBackend();
    }
    return m_backend;
}

bool LazyTextRecognition::isLoaded() {
    const std::lock_guard lock(m_mutex);
    return m_backend != nullptr;
}

void LazyTextRecognition::release() {
    std::shared_ptr<TextRecognitionBackend> released;
    const std::lock_guard lock(m_mutex);
    // A reading that has begun in the meantime has it as well, and goes on with it to its end.
    std::swap(released, m_backend);
}

QStringList LazyTextRecognition::supportedLanguages() {
    const IdleRelease::Use use(m_idle);
    return backend()->supportedLanguages();
}

PictureText LazyTextRecognition::recognize(const QImage& picture, const QStringList& languages,
                                           const IsTimeUp& isTimeUp) {
    const IdleRelease::Use use(m_idle);
    std::shared_ptr<TextRecognitionBackend> engine;
    try {
        engine = backend();
    } catch (const PlatformError& error) {
        return nothingBut(
            u"Text recognition is not installed (packages libtesseract5 and tesseract-ocr-eng). "_s +
            error.message());
    }
    if (engine->supportedLanguages().isEmpty()) {
        return nothingBut(u"No language data for text recognition are installed (package tesseract-ocr-eng, "
                          "or the folder that TESSDATA_PREFIX names)."_s);
    }
    return engine->recognize(picture, languages, isTimeUp);
}

PictureText LazyTextRecognition::nothingBut(const QString& reason) {
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_saidWhatIsMissing, true))
            return {};
    }
    throw PlatformError(reason);
}

} // namespace orvane::ocr
