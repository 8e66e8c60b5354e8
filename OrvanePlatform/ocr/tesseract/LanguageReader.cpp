#include "OrvanePlatform/ocr/tesseract/LanguageReader.h"

#include "OrvanePlatform/ocr/tesseract/LanguageData.h"

namespace orvane::ocr {

void LanguageReader::load(const QStringList& languages) {
    for (const QString& language : languages)
        engine(language);
}

Readings LanguageReader::read(const QImage& line, const QStringList& languages) {
    const QString& preferred = languages.front();
    const Reading first = engine(preferred).readLine(line);
    Readings readings{{preferred, first}};
    if (!isDoubtful(first))
        return readings;
    // The last ones have scripts of their own, which often settles it.
    const QStringList lastFirst(languages.crbegin(), languages.crend() - 1);
    for (const QString& language : lastFirst) {
        const Reading reading = engine(language).readLine(line);
        readings[language] = reading;
        if (isUnmistakable(language, reading))
            break;
    }
    return readings;
}

TesseractEngine& LanguageReader::engine(const QString& language) {
    std::unique_ptr<TesseractEngine>& engine = m_engines[language];
    if (!engine)
        engine = std::make_unique<TesseractEngine>(dataNameOf(language));
    return *engine;
}

} // namespace orvane::ocr
