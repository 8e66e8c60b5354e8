#pragma once

#include <QImage>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <vector>

namespace orvane {

class TextRecognitionBackend;

/// One line of text that was read in a picture.
struct RecognizedText {
    QString text;
    /// Fractions of the picture's width and height, from its top-left corner, y down.
    QRectF boundingBox;
    float confidence = 0;
};

/// Reads the text of a picture. Nothing here throws: what cannot be read is empty, with a line in the log.
/// Any thread; blocks for as long as the backend takes.
class TextRecognizer {
public:
    /// Lines that are less certain than this are dropped.
    static constexpr float minConfidence = 0.4F;

    /// The backend outlives the recognizer.
    explicit TextRecognizer(TextRecognitionBackend& backend)
        : m_backend(backend) {}

    /// The lines in the order the backend gives them.
    std::vector<RecognizedText> recognize(const QImage& image) const;

    /// The text of each line, joined by newlines; empty when there is none.
    QString recognizeJoined(const QImage& image) const;

private:
    QStringList preferredLanguages() const;

    TextRecognitionBackend& m_backend;
};

} // namespace orvane
