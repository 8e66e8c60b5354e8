#pragma once

#include "OrvaneCore/platform/PlatformError.h"
#include "OrvaneCore/platform/TextRecognitionBackend.h"

#include <optional>

namespace orvane::test {

/// A reader that reads what a test put in, and records what it was shown. While `failure` is set it throws
/// it.
class FakeTextRecognition final : public TextRecognitionBackend {
public:
    QStringList languages{QStringLiteral("en-US")};
    std::vector<TextLine> lines;
    std::optional<QString> failure;

    std::vector<QImage> pictures;
    std::vector<QStringList> askedLanguages;

    QStringList supportedLanguages() override {
        refuse();
        return languages;
    }

    std::vector<TextLine> recognize(const QImage& picture, const QStringList& wanted) override {
        refuse();
        pictures.push_back(picture);
        askedLanguages.push_back(wanted);
        return lines;
    }

private:
    void refuse() const {
        if (failure)
            throw PlatformError(*failure);
    }
};

} // namespace orvane::test
