#include "OrvanePlatform/ocr/LazyTextRecognition.h"

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/ocr/TextRecognitionModule.h"

#include <utility>

namespace orvane::ocr {

using namespace Qt::StringLiterals;

LazyTextRecognition::LazyTextRecognition(std::optional<QString> moduleFolder)
    : m_moduleFolder(std::move(moduleFolder)) {}

TextRecognitionBackend& LazyTextRecognition::backend() {
    const std::lock_guard lock(m_mutex);
    if (!m_backend) {
        const modules::ModuleLoader loader(m_moduleFolder ? *m_moduleFolder
                                                          : modules::ModuleLoader::standardFolder());
        m_backend = loader.load<TextRecognitionModule>(u"orvane-ocr"_s).makeBackend();
    }
    return *m_backend;
}

QStringList LazyTextRecognition::supportedLanguages() {
    return backend().supportedLanguages();
}

std::vector<TextLine> LazyTextRecognition::recognize(const QImage& picture, const QStringList& languages) {
    TextRecognitionBackend* engine = nullptr;
    try {
        engine = &backend();
    } catch (const PlatformError& error) {
        return nothingBut(
            u"Text recognition is not installed (packages libtesseract5 and tesseract-ocr-eng). "_s +
            error.message());
    }
    if (engine->supportedLanguages().isEmpty()) {
        return nothingBut(u"No language data for text recognition are installed (package tesseract-ocr-eng, "
                          "or the folder that TESSDATA_PREFIX names)."_s);
    }
    return engine->recognize(picture, languages);
}

std::vector<TextLine> LazyTextRecognition::nothingBut(const QString& reason) {
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_saidWhatIsMissing, true))
            return {};
    }
    throw PlatformError(reason);
}

} // namespace orvane::ocr
