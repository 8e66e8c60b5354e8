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
    /// Called after each line.
    std::function<void()> lineRead;

    std::vector<QImage> pictures;
    std::vector<QStringList> askedLanguages;

    QStringList supportedLanguages() override {
        refuse();
        return languages;
    }

    PictureText recognize(const QImage& picture, const QStringList& wanted,
                          const IsTimeUp& isTimeUp) override {
        refuse();
        pictures.push_back(picture);
        askedLanguages.push_back(wanted);
        PictureText text{.lines = {}, .found = static_cast<qsizetype>(lines.size()), .unread = 0};
        for (const TextLine& line : lines) {
            if (isTimeUp()) {
                text.unread = text.found - static_cast<qsizetype>(text.lines.size());
                break;
            }
            text.lines.push_back(line);
            if (lineRead)
                lineRead();
        }
        return text;
    }

private:
    void refuse() const {
        if (failure)
            throw PlatformError(*failure);
    }
};

} // namespace orvane::test
