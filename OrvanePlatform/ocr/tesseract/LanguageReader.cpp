#include "OrvanePlatform/ocr/tesseract/LanguageReader.h"

#include "OrvanePlatform/ocr/layout/LinePicture.h"
#include "OrvanePlatform/ocr/tesseract/LanguageData.h"

namespace orvane::ocr {

Readings LanguageReader::read(const QImage& picture, const QRect& box, const QStringList& languages,
                              const IsTimeUp& isTimeUp) {
    Readings readings;
    // By height; most lines need but one.
    std::map<int, QImage> shapes;
    const QString& preferred = languages.front();
    for (const QString& language : inOrderOfAsking(languages)) {
        if (isTimeUp())
            break;
        const auto engine = enginesFor(language).take(isTimeUp);
        if (!engine)
            break;
        const LineShape shape = lineShapeFor(language);
        QImage& line = shapes[shape.height];
        if (line.isNull())
            line = linePicture(picture, box, shape);
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
