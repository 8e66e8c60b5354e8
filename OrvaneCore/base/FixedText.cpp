#include "OrvaneCore/base/FixedText.h"

#include <array>
#include <charconv>

namespace orvane {

QString fixedText(double value, int decimals) {
    // The largest double has 309 digits before the point.
    std::array<char, 400> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   std::chars_format::fixed, decimals);
    return QString::fromLatin1(buffer.data(), end.ptr - buffer.data());
}

} // namespace orvane
