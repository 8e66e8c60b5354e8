#pragma once

#include <QByteArray>
#include <QImage>

namespace orvane {

/// Turns pixels into the bytes of a PNG file (ISO/IEC 15948). Any thread; calls may run side by side.
class PngWriter {
public:
    virtual ~PngWriter() = default;

    /// Opaque pictures become 8-bit RGB, others 8-bit RGBA with straight alpha. Empty bytes when the picture
    /// is null or cannot be encoded.
    virtual QByteArray encode(const QImage& image) const = 0;

protected:
    PngWriter() = default;
    PngWriter(const PngWriter&) = default;
    PngWriter& operator=(const PngWriter&) = default;
};

} // namespace orvane
