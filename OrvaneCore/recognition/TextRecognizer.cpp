#include "OrvaneCore/recognition/TextRecognizer.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/platform/PlatformError.h"
#include "OrvaneCore/platform/TextRecognitionBackend.h"

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

QRectF fractionsOf(const QSize& picture, const QRectF& box) {
    return {box.x() / picture.width(), box.y() / picture.height(), box.width() / picture.width(),
            box.height() / picture.height()};
}

} // namespace

QStringList TextRecognizer::preferredLanguages() const {
    QStringList preferred{u"en-US"_s, u"zh-Hans"_s, u"zh-Hant"_s, u"ja-JP"_s, u"ko-KR"_s};
    const QString fallback = preferred.front();
    try {
        const QStringList supported = m_backend.supportedLanguages();
        preferred.removeIf([&supported](const QString& language) { return !supported.contains(language); });
    } catch (const PlatformError&) {
        // What is wrong with the backend is told by the recognition, which fails next.
        preferred.clear();
    }
    return preferred.isEmpty() ? QStringList(fallback) : preferred;
}

std::vector<RecognizedText> TextRecognizer::recognize(const QImage& image) const {
    std::vector<RecognizedText> texts;
    if (image.isNull())
        return texts;
    try {
        const std::vector<TextLine> lines = m_backend.recognize(image, preferredLanguages());
        texts.reserve(lines.size());
        for (const TextLine& line : lines) {
            if (line.confidence >= minConfidence)
                texts.push_back({line.text, fractionsOf(image.size(), line.box), line.confidence});
        }
    } catch (const PlatformError& error) {
        logLine(u"OCR error: "_s + error.message());
        texts.clear();
    }
    return texts;
}

QString TextRecognizer::recognizeJoined(const QImage& image) const {
    QStringList lines;
    for (const RecognizedText& text : recognize(image))
        lines.append(text.text);
    return lines.join(u'\n');
}

} // namespace orvane
