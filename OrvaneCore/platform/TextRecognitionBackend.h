#pragma once

#include <QImage>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <functional>
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

/// What was read in a picture, which is not all of it when time was up.
struct PictureText {
    /// In reading order, whatever their confidence.
    std::vector<TextLine> lines;
    /// How many places look like a line. More than there are lines, for not all of them hold text.
    qsizetype found = 0;
    /// How many of them nobody has looked at, which are the last ones.
    qsizetype unread = 0;
};

/// Whether whoever reads shall leave off. Asked again and again from any thread; once true it stays so.
using IsTimeUp = std::function<bool()>;

/// Reads text in pictures. Any thread; calls may take seconds, and calls made side by side share the engines.
/// The first call may load them.
class TextRecognitionBackend {
public:
    virtual ~TextRecognitionBackend() = default;

    /// The languages (BCP 47) whose data are installed. Empty when there are none.
    /// Throws PlatformError when the engine cannot be had.
    virtual QStringList supportedLanguages() = 0;

    /// The lines of a picture. `languages` are some of the supported ones, the preferred first: a line is
    /// read in the first of them that fits it. A picture without text, or without pixels, gives none. When
    /// time is up the line in hand is read to its end, and no other one is begun. Throws PlatformError when
    /// recognition fails.
    virtual PictureText recognize(const QImage& picture, const QStringList& languages,
                                  const IsTimeUp& isTimeUp) = 0;

protected:
    TextRecognitionBackend() = default;
    TextRecognitionBackend(const TextRecognitionBackend&) = default;
    TextRecognitionBackend& operator=(const TextRecognitionBackend&) = default;
};

} // namespace orvane
