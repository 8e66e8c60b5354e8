#include "OrvanePlatform/ocr/tesseract/LanguageReader.h"

#include "OrvanePlatform/ocr/tesseract/LanguageData.h"

namespace orvane::ocr {

Readings LanguageReader::read(const QImage& line, const QStringList& languages, const IsTimeUp& isTimeUp) {
    Readings readings;
    const QString& preferred = languages.front();
    for (const QString& language : inOrderOfAsking(languages)) {
        if (isTimeUp())
            break;
        const auto engine = enginesFor(language).take(isTimeUp);
        if (!engine)
            break;
        const Reading reading = (*engine).readLine(line);
        readings[language] = reading;
        if (language == preferred ? !isDoubtful(reading)
                                  : isSettledBy(language, reading, readings[preferred]))
            break;
    }
    return readings;
}

FairPool<TesseractEngine>& LanguageReader::enginesFor(const QString& language) {
    const std::scoped_lock lock(m_mutex);
    return m_engines
        .try_emplace(language, m_most,
                     [name = dataNameOf(language)] { return std::make_unique<TesseractEngine>(name); })
        .first->second;
}

} // namespace orvane::ocr
