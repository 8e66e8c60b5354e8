#pragma once

#include <QString>

namespace orvane {

/// The number with that many decimals as C's "%.Nf" writes it in the C locale: halves that are exact go to
/// the even digit, the decimal separator is a point wherever the user lives. `value` is finite.
QString fixedText(double value, int decimals);

} // namespace orvane
