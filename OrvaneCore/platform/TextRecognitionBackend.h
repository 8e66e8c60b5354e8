#pragma once

#include <QImage>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <vector>

namespace orvane {

/// One line of text in a picture.
struct TextLine {
    QString text;
    /// Pixels of the picture, y down.
    QRectF box;
    /// A number from 0, a guess, to 1, certain.
    float confidence = 0;
};

/// Reads text in pictures. Any thread; calls may take seconds, and calls made side by side may wait for each
/// other. The first call may load the engine.
class TextRecognitionBackend {
public:
    virtual ~TextRecognitionBackend() = default;

    /// The languages (BCP 47) whose data are installed. Empty when there are none.
    /// Throws PlatformError when the engine cannot be had.
    virtual QStringList supportedLanguages() = 0;

    /// The lines of a picture in reading order, whatever their confidence. `languages` are some of the
    /// supported ones, the preferred first: a line is read in the first of them that fits it.
    /// A picture without text, or without pixels, gives none. Throws PlatformError when recognition fails.
    virtual std::vector<TextLine> recognize(const QImage& picture, const QStringList& languages) = 0;

protected:
    TextRecognitionBackend() = default;
    TextRecognitionBackend(const TextRecognitionBackend&) = default;
    TextRecognitionBackend& operator=(const TextRecognitionBackend&) = default;
};

} // namespace orvane
