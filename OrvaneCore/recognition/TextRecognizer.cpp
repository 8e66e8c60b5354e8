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

QStringList textsOf(const std::vector<RecognizedText>& recognized) {
    QStringList texts;
    texts.reserve(static_cast<qsizetype>(recognized.size()));
    for (const RecognizedText& text : recognized)
        texts.append(text.text);
    return texts;
}

SystemClock& systemClock() {
    static SystemClock clock;
    return clock;
}

} // namespace

TextRecognizer::TextRecognizer(TextRecognitionBackend& backend)
    : TextRecognizer(backend, systemClock()) {}

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

TextRecognizer::Recognition TextRecognizer::read(const QImage& image,
                                                 const std::function<bool()>& isTimeUp) const {
    if (image.isNull())
        return {};
    try {
        const PictureText text = m_backend.recognize(image, preferredLanguages(), isTimeUp);
        Recognition recognition{.texts = {}, .found = text.found, .unread = text.unread};
        recognition.texts.reserve(text.lines.size());
        for (const TextLine& line : text.lines) {
            if (line.confidence >= minConfidence) {
                recognition.texts.push_back(
                    {line.text, fractionsOf(image.size(), line.box), line.confidence});
            }
        }
        return recognition;
    } catch (const PlatformError& error) {
        logLine(u"OCR error: "_s + error.message());
        return {};
    }
}

std::vector<RecognizedText> TextRecognizer::recognize(const QImage& image) const {
    return read(image, [] { return false; }).texts;
}

QString TextRecognizer::recognizeJoined(const QImage& image) const {
    return textsOf(recognize(image)).join(u'\n');
}

QString TextRecognizer::recognizeJoined(const QImage& image, const ReadingBudget& budget) const {
    if (image.isNull())
        return {};
    // Finding lines takes time too, and there may be many more pictures.
    if (budget.isSpent())
        return u"(Text not read in time.)"_s;
    const Recognition recognition = read(image, [&budget] { return budget.isSpent(); });
    QStringList lines = textsOf(recognition.texts);
    if (recognition.unread > 0) {
        lines.append(u"(Text not read in time: %1 of %2 lines.)"_s.arg(QString::number(recognition.unread),
                                                                       QString::number(recognition.found)));
    }
    return lines.join(u'\n');
}

} // namespace orvane
