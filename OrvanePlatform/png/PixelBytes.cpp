#include "OrvanePlatform/png/PixelBytes.h"

#include <cstdint>
#include <cstring>

#include <QSysInfo>

namespace orvane::png {

namespace {

/// Four pixels. The compiler makes of it what the processor has: one register or several.
using Two = uint64_t __attribute__((vector_size(16)));

constexpr int pixelsAtOnce = 4;

constexpr Two both(uint64_t value) {
    return Two{value, value};
}

/// In each half the six bytes of its two pixels, and two of no meaning behind them.
Two packed(Two pixels) {
    const Two lowest = both(0x0000'00ff'0000'00ffU);
    // As numbers: blue is the lowest byte of a pixel, and of the file's bytes red is the first one.
    const Two turned = ((pixels >> 16) & lowest) | (pixels & (lowest << 8)) | ((pixels & lowest) << 16);
    return (turned & both(0xff'ffffU)) | ((turned >> 8) & both(0xffff'ff00'0000U));
}

} // namespace

void packRgb(const QRgb* pixels, int count, uchar* to) {
    int i = 0;
    if constexpr (QSysInfo::ByteOrder == QSysInfo::LittleEndian) {
        // What a step writes behind its own bytes is written over by the next one, the last of them below.
        for (; i < count - pixelsAtOnce; i += pixelsAtOnce) {
            Two four;
            std::memcpy(&four, pixels + i, sizeof four);
            four = packed(four);
            const uint64_t first = four[0];
            const uint64_t second = four[1];
            std::memcpy(to, &first, sizeof first);
            std::memcpy(to + 6, &second, sizeof second);
            to += 12;
        }
    }
    for (; i < count; ++i) {
        *to++ = static_cast<uchar>(qRed(pixels[i]));
        *to++ = static_cast<uchar>(qGreen(pixels[i]));
        *to++ = static_cast<uchar>(qBlue(pixels[i]));
    }
}

} // namespace orvane::png
