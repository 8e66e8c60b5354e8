#include "OrvaneCore/base/PlainText.h"

#include <algorithm>

namespace orvane {

namespace {

bool isControl(QChar character) {
    const char16_t code = character.unicode();
    const auto within = [code](char16_t first, char16_t last) { return code >= first && code <= last; };
    return code < 0x20 || within(0x7f, 0x9f) || code == 0x061c || within(0x200e, 0x200f) ||
           within(0x2028, 0x202e) || within(0x2066, 0x2069);
}

} // namespace

QString withoutControls(const QString& text) {
    QString plain = text;
    plain.removeIf(isControl);
    return plain;
}

QString onOneLine(QStringView text) {
    QString line = text.toString();
    std::replace_if(line.begin(), line.end(), isControl, u' ');
    return line;
}

} // namespace orvane
