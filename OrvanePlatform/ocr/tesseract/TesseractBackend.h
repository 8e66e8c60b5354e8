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
/// picture of many lines is read by several threads at once. One picture at a time.
class TesseractBackend final : public TextRecognitionBackend {
public:
    QStringList supportedLanguages() override;
    std::vector<TextLine> recognize(const QImage& picture, const QStringList& languages) override;

private:
    std::vector<Readings> readAll(const QImage& picture, const std::vector<FoundLine>& lines,
                                  const QStringList& languages);

    std::mutex m_mutex;
    QStringList m_supported;
    /// As many as have been wanted at once; the first one has all languages loaded.
    std::vector<std::unique_ptr<LanguageReader>> m_readers;
};

} // namespace orvane::ocr
