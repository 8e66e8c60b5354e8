#pragma once

#include <QColor>
#include <QString>
#include <QStringView>

namespace orvane {

/// The opaque sRGB colour that a hexadecimal number stands for: its low 24 bits, red first. One leading "#"
/// is left out, then blanks and "0x"; the number ends where the digits end. Text without digits is black.
QColor colorFromHex(QStringView text);

/// "#RRGGBB" in sRGB, without the alpha value.
QString toHexString(const QColor& color);

} // namespace orvane
