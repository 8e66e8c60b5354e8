#pragma once

#include "OrvaneCore/platform/TextRecognitionBackend.h"

#include <QtPlugin>

#include <memory>

namespace orvane::ocr {

/// What the root object of the text recognition module offers.
class TextRecognitionModule {
public:
    virtual ~TextRecognitionModule() = default;

    virtual std::unique_ptr<TextRecognitionBackend> makeBackend() = 0;

protected:
    TextRecognitionModule() = default;
    TextRecognitionModule(const TextRecognitionModule&) = default;
    TextRecognitionModule& operator=(const TextRecognitionModule&) = default;
};

} // namespace orvane::ocr

Q_DECLARE_INTERFACE(orvane::ocr::TextRecognitionModule, "com.orvane.TextRecognitionModule/1")
