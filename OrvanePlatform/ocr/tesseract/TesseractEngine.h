#pragma once

#include "OrvanePlatform/ocr/reading/Reading.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <memory>

namespace tesseract {
class TessBaseAPI;
}

namespace orvane::ocr {

/// Tesseract with the data of one language. One call at a time; any thread.
class TesseractEngine {
public:
    /// `dataName`: the name of the data file without its suffix, "eng".
    /// Throws PlatformError when it does not load.
    explicit TesseractEngine(const QString& dataName);
    ~TesseractEngine();
    TesseractEngine(const TesseractEngine&) = delete;
    TesseractEngine& operator=(const TesseractEngine&) = delete;

    /// The names of the data files that are installed.
    static QStringList installedData();

    /// Gives back what Tesseract keeps of data that no engine uses any more, and the freed memory to the
    /// system.
    static void releaseUnusedData();

    /// `line`: dark text on white, one line that fills the picture but for a small margin. Format_Grayscale8.
    /// Empty where there is nothing to read. Throws PlatformError when Tesseract fails.
    Reading readLine(const QImage& line);

private:
    std::unique_ptr<tesseract::TessBaseAPI> m_api;
};

} // namespace orvane::ocr
