#include "OrvanePlatform/media/ffmpeg/FrameConverter.h"

#include "OrvanePlatform/media/ffmpeg/AvError.h"
#include "OrvanePlatform/media/video/VideoLimits.h"

#include <algorithm>
#include <array>

namespace orvane::media {

using namespace Qt::StringLiterals;

namespace {

// The vector instructions of the conversion read whole blocks of so many pixels, beyond the end of a row that
// is no multiple of it.
constexpr int pixelsAtOnce = 32;

QImage opaqueOf(const QImage& frame) {
    switch (frame.format()) {
    // The conversion looks at three of the four bytes only.
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return frame;
    default:
        return frame.convertToFormat(QImage::Format_RGB32);
    }
}

} // namespace

FrameConverter::FrameConverter(const QSize& movieSize)
    : m_movieSize(movieSize)
    , m_picture(made<FrameOwner>(av_frame_alloc())) {
    const QSize stored = storedSize(movieSize);
    m_picture->format = AV_PIX_FMT_YUV420P;
    m_picture->width = stored.width();
    m_picture->height = stored.height();
    m_picture->color_range = AVCOL_RANGE_MPEG;
    m_picture->color_primaries = AVCOL_PRI_BT709;
    m_picture->color_trc = AVCOL_TRC_BT709;
    m_picture->colorspace = AVCOL_SPC_BT709;

    // Nothing is scaled here but the colours, each of which is the mean of four pixels.
    m_scaler = made<ScalerOwner>(sws_getContext(stored.width(), stored.height(), AV_PIX_FMT_0RGB32,
                                                stored.width(), stored.height(), AV_PIX_FMT_YUV420P,
                                                SWS_AREA | SWS_ACCURATE_RND, nullptr, nullptr, nullptr));
    const int* coefficients = sws_getCoefficients(SWS_CS_ITU709);
    constexpr int neutral = 1 << 16;
    checked(sws_setColorspaceDetails(m_scaler.get(), coefficients, 1, coefficients, 0, 0, neutral, neutral),
            u"The colours of a movie could not be set"_s);
}

AVFrame& FrameConverter::convert(const QImage& frame) {
    // The encoder may still hold what the picture was.
    if (m_picture->buf[0] == nullptr) {
        checked(av_frame_get_buffer(m_picture.get(), 0), u"A picture of the movie could not be made"_s);
    } else {
        checked(av_frame_make_writable(m_picture.get()), u"A picture of the movie could not be made"_s);
    }

    QImage source = opaqueOf(frame);
    if (source.size() != m_movieSize)
        source = source.scaled(m_movieSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (m_movieSize.width() % pixelsAtOnce != 0 || m_movieSize.height() % 2 != 0)
        source = paddedOf(source);

    const std::array<const uint8_t*, 4> bytes{source.constBits()};
    const std::array<int, 4> strides{static_cast<int>(source.bytesPerLine())};
    checked(sws_scale(m_scaler.get(), bytes.data(), strides.data(), 0, m_picture->height, m_picture->data,
                      m_picture->linesize),
            u"A frame could not be converted"_s);
    return *m_picture;
}

const QImage& FrameConverter::paddedOf(const QImage& frame) {
    const QSize stored = storedSize(m_movieSize);
    if (m_padded.isNull()) {
        const int blocks = (stored.width() + pixelsAtOnce - 1) / pixelsAtOnce;
        m_padded = QImage(blocks * pixelsAtOnce, stored.height(), QImage::Format_RGB32);
        if (m_padded.isNull())
            throw std::bad_alloc();
        m_padded.fill(Qt::black);
    }
    const int width = frame.width();
    for (int y = 0; y < stored.height(); ++y) {
        const auto* from =
            reinterpret_cast<const QRgb*>(frame.constScanLine(std::min(y, frame.height() - 1)));
        auto* to = reinterpret_cast<QRgb*>(m_padded.scanLine(y));
        std::copy(from, from + width, to);
        to[stored.width() - 1] = from[width - 1];
    }
    return m_padded;
}

} // namespace orvane::media
