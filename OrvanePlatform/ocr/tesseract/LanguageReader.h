#pragma once

#include "OrvanePlatform/ocr/reading/LanguageChoice.h"
#include "OrvanePlatform/ocr/tesseract/TesseractEngine.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <map>
#include <memory>

namespace orvane::ocr {

/// Reads lines in several languages (BCP 47), with one engine for each that is made when it is first wanted
/// and kept. One call at a time; any thread.
class LanguageReader {
public:
    /// Makes the engines now, so that no later line has to wait for one. Throws PlatformError when the data
    /// of a language do not load.
    void load(const QStringList& languages);

    /// What the line says in the preferred language, which is the first; and where that is doubtful what it
    /// says in the others, so that having them costs the preferred one neither time nor mistakes. `line` is
    /// as TesseractEngine::readLine takes it. Throws PlatformError when an engine fails.
    Readings read(const QImage& line, const QStringList& languages);

private:
    TesseractEngine& engine(const QString& language);

    std::map<QString, std::unique_ptr<TesseractEngine>> m_engines;
};

} // namespace orvane::ocr
