#pragma once

#include <QImage>
#include <QString>

namespace orvane {

/// The desktop's clipboard: what is written takes the place of all that was there. Any thread; nothing is
/// waited for, and writes count in the order in which they were made.
class Clipboard {
public:
    virtual ~Clipboard() = default;

    virtual void writeText(const QString& text) = 0;

    /// The picture alone, with no text to it.
    virtual void writeImage(const QImage& image) = 0;

protected:
    Clipboard() = default;
    Clipboard(const Clipboard&) = default;
    Clipboard& operator=(const Clipboard&) = default;
};

} // namespace orvane
