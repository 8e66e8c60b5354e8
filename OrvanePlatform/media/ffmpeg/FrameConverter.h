#pragma once

#include "OrvanePlatform/media/ffmpeg/Owners.h"

#include <QImage>
#include <QSize>

namespace orvane::media {

/// Makes pictures of a movie out of frames: in the movie's size, with even sides, in yuv420p with the
/// coefficients of BT.709 and the limited range. One thread at a time.
class FrameConverter {
public:
    /// `movieSize`: that of the frames in pixels, which may be odd. Throws std::bad_alloc.
    explicit FrameConverter(const QSize& movieSize);

    /// The frame scaled to the movie's size, its alpha ignored; where a side of the movie is odd, its last
    /// column or row comes twice. What is given holds until the next call. Throws PlatformError.
    AVFrame& convert(const QImage& frame);

private:
    const QImage& paddedOf(const QImage& frame);

    QSize m_movieSize;
    FrameOwner m_picture;
    ScalerOwner m_scaler;
    /// With room for what does not fit as it is.
    QImage m_padded;
};

} // namespace orvane::media
