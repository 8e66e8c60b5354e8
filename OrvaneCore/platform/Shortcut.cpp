#include "OrvaneCore/platform/Shortcut.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>

#include <limits>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

std::optional<int> naturalNumber(const QJsonValue& value) {
    // Also -1 for what is no number or has a fraction.
    const qint64 number = value.toInteger(-1);
    if (number < 0 || number > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(number);
}

} // namespace

QString Shortcut::toJson() const {
    const QJsonObject object{{u"carbonKeyCode"_s, carbonKeyCode}, {u"carbonModifiers"_s, carbonModifiers}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

std::optional<Shortcut> Shortcut::fromJson(QStringView text) {
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    const std::optional<int> keyCode = naturalNumber(object.value("carbonKeyCode"_L1));
    const std::optional<int> modifiers = naturalNumber(object.value("carbonModifiers"_L1));
    if (!keyCode || !modifiers)
        return std::nullopt;
    return Shortcut{*keyCode, *modifiers};
}

} // namespace orvane
