#pragma once

#include "OrvanePlatform/ocr/TextRecognitionModule.h"

#include <QObject>

namespace orvane::ocr {

/// The root object of the module library.
class TesseractModule final : public QObject, public TextRecognitionModule {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.orvane.TextRecognitionModule/1")
    Q_INTERFACES(orvane::ocr::TextRecognitionModule)

public:
    std::unique_ptr<TextRecognitionBackend> makeBackend() override;
};

} // namespace orvane::ocr
