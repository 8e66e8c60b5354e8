#include "OrvaneCore/storage/SessionNaming.h"

#include <QStringList>
#include <QStringView>

#include <algorithm>

namespace orvane {

namespace {

constexpr QLatin1String namePrefix("**Name:**");
constexpr QLatin1String appPrefix("**App:**");

template <typename Lines>
auto findLine(Lines& lines, QLatin1String prefix) {
    return std::find_if(lines.begin(), lines.end(),
                        [prefix](const auto& line) { return line.startsWith(prefix); });
}

/// Unlike QString::trimmed this leaves line breaks, a carriage return among them, where they are.
bool isBlank(QChar character) {
    return character == QLatin1Char('\t') || character.category() == QChar::Separator_Space;
}

QStringView trimBlanks(QStringView text) {
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

} // namespace

QString session_naming::setName(const QString& markdown, const QString& name) {
    const QString nameLine = namePrefix + QLatin1Char(' ') + name;
    QStringList lines = markdown.split(QLatin1Char('\n'));
    if (const auto named = findLine(lines, namePrefix); named != lines.end()) {
        *named = nameLine;
    } else if (const auto app = findLine(lines, appPrefix); app != lines.end()) {
        lines.insert(app, nameLine);
    } else if (lines.size() >= 2) {
        lines.insert(1, nameLine);
    } else {
        lines.append(nameLine);
    }
    return lines.join(QLatin1Char('\n'));
}

std::optional<QString> session_naming::parseName(const QString& markdown) {
    const QList<QStringView> lines = QStringView(markdown).split(QLatin1Char('\n'));
    const auto named = findLine(lines, namePrefix);
    if (named == lines.end())
        return std::nullopt;
    const QStringView name = trimBlanks(named->sliced(namePrefix.size()));
    return name.isEmpty() ? std::nullopt : std::optional(name.toString());
}

} // namespace orvane
