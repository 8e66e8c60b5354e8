#include "OrvaneCore/drawing/ColorText.h"

#include <QtGlobal>

#include <algorithm>
#include <limits>
#include <optional>

namespace orvane {

namespace {

std::optional<quint64> hexDigit(QChar character) {
    const char16_t code = character.unicode();
    if (code >= u'0' && code <= u'9')
        return code - u'0';
    if (code >= u'A' && code <= u'F')
        return code - u'A' + 10;
    if (code >= u'a' && code <= u'f')
        return code - u'a' + 10;
    return std::nullopt;
}

/// The number that the text begins with, 0 for none. One of more than 64 bits is the greatest of 64 bits.
quint64 leadingHexNumber(QStringView text) {
    constexpr quint64 greatest = std::numeric_limits<quint64>::max();
    quint64 number = 0;
    for (const QChar character : text) {
        const std::optional<quint64> digit = hexDigit(character);
        if (!digit)
            break;
        if (number > greatest >> 4U)
            return greatest;
        number = number << 4U | *digit;
    }
    return number;
}

int byteOf(float component) {
    return qRound(std::clamp(component, 0.0F, 1.0F) * 255);
}

} // namespace

QColor colorFromHex(QStringView text) {
    if (text.startsWith(u'#'))
        text = text.sliced(1);
    while (!text.isEmpty() && text.front().isSpace())
        text = text.sliced(1);
    if (text.startsWith(u"0x", Qt::CaseInsensitive))
        text = text.sliced(2);
    return QColor(static_cast<QRgb>(leadingHexNumber(text) & 0xFFFFFFU));
}

QString toHexString(const QColor& color) {
    return QString::asprintf("#%02X%02X%02X", byteOf(color.redF()), byteOf(color.greenF()),
                             byteOf(color.blueF()));
}

} // namespace orvane
