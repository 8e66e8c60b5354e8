#include "OrvanePlatform/ocr/tesseract/TesseractModule.h"

#include "OrvanePlatform/ocr/tesseract/TesseractBackend.h"

namespace orvane::ocr {

std::unique_ptr<TextRecognitionBackend> TesseractModule::makeBackend() {
    return std::make_unique<TesseractBackend>();
}

} // namespace orvane::ocr
