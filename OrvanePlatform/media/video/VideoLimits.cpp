#include "OrvanePlatform/media/video/VideoLimits.h"

#include "OrvaneCore/platform/PlatformError.h"

namespace orvane::media {

using namespace Qt::StringLiterals;

namespace {

constexpr int blockSide = 16;
// What the highest level of H.264 (6.2) allows.
constexpr qint64 mostBlocks = 139'264;
constexpr int longestSide = 16'384;

constexpr int mostFramesPerSecond = 1000;
// An encoder counts in thousands of bits with 32-bit numbers; this is beyond every level of H.264.
constexpr qint64 mostBitsPerSecond = 1'000'000'000;

qint64 blocksAlong(int side) {
    return (side + blockSide - 1) / blockSide;
}

} // namespace

void requirePossible(const VideoFormat& format) {
    const int width = format.sizePixels.width();
    const int height = format.sizePixels.height();
    if (width <= 0 || height <= 0)
        throw PlatformError(u"A movie of %1 x %2 pixels has no picture."_s.arg(width).arg(height));
    if (width > longestSide || height > longestSide || blocksAlong(width) * blocksAlong(height) > mostBlocks)
        throw PlatformError(u"A movie of %1 x %2 pixels is too large for H.264."_s.arg(width).arg(height));
    if (format.framesPerSecond <= 0 || format.framesPerSecond > mostFramesPerSecond)
        throw PlatformError(u"A movie cannot have %1 frames in each second."_s.arg(format.framesPerSecond));
    if (format.bitsPerSecond <= 0 || format.bitsPerSecond > mostBitsPerSecond)
        throw PlatformError(u"A movie cannot have %1 bits in each second."_s.arg(format.bitsPerSecond));
    if (format.keyFrameInterval <= 0) {
        throw PlatformError(
            u"A movie cannot have a key frame in every %1 frames."_s.arg(format.keyFrameInterval));
    }
}

QSize storedSize(const QSize& size) {
    return {size.width() + size.width() % 2, size.height() + size.height() % 2};
}

} // namespace orvane::media
