#pragma once

#include "OrvaneCore/platform/TextRecognitionBackend.h"
#include "OrvanePlatform/ocr/reading/FairPool.h"
#include "OrvanePlatform/ocr/reading/LanguageChoice.h"
#include "OrvanePlatform/ocr/tesseract/TesseractEngine.h"

#include <QImage>
#include <QRect>
#include <QString>
#include <QStringList>

#include <map>
#include <mutex>

namespace orvane::ocr {

/// Reads lines in several languages (BCP 47), with engines of each that are made when they are first wanted
/// and kept. Any thread; calls made side by side take turns, line by line.
class LanguageReader {
public:
    /// `most`: how many engines of a language there may be.
    explicit LanguageReader(std::size_t most)
        : m_most(most) {}

    /// What the line says in the preferred language, which is the first; and where that is doubtful what it
    /// says in the others, so that having them costs the preferred one neither time nor mistakes. Empty when
    /// time was up before it was begun. The line is what is in `box` of `picture` (Format_RGB32).
    /// Throws PlatformError when an engine fails, or its data do not load.
    Readings read(const QImage& picture, const QRect& box, const QStringList& languages,
                  const IsTimeUp& isTimeUp);

private:
    FairPool<TesseractEngine>& enginesFor(const QString& language);

    std::size_t m_most;
    std::mutex m_mutex;
    std::map<QString, FairPool<TesseractEngine>> m_engines;
};

} // namespace orvane::ocr
