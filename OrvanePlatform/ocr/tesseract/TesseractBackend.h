#pragma once

#include "OrvaneCore/platform/TextRecognitionBackend.h"
#include "OrvanePlatform/ocr/layout/LineFinder.h"
#include "OrvanePlatform/ocr/tesseract/LanguageReader.h"

#include <QImage>

#include <memory>
#include <mutex>
#include <vector>

namespace orvane::ocr {

/// Text recognition with Tesseract: the lines of a picture are found first and then read one by one. A
/// picture of many lines is read by several threads at once. Pictures that are read side by side take turns,
/// line by line, so that none of them waits for the end of another one.
class TesseractBackend final : public TextRecognitionBackend {
public:
    TesseractBackend();
    ~TesseractBackend() override;
    TesseractBackend(const TesseractBackend&) = delete;
    TesseractBackend& operator=(const TesseractBackend&) = delete;

    QStringList supportedLanguages() override;
    PictureText recognize(const QImage& picture, const QStringList& languages,
                          const IsTimeUp& isTimeUp) override;

private:
    /// Of the lines that were read, which are the first ones.
    std::vector<Readings> readAll(const QImage& picture, const std::vector<FoundLine>& lines,
                                  const QStringList& languages, const IsTimeUp& isTimeUp);

    std::mutex m_mutex;
    QStringList m_supported;
    /// Null only while this goes.
    std::unique_ptr<LanguageReader> m_reader;
};

} // namespace orvane::ocr
