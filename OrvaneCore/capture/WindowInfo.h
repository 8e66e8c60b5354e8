#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>
#include <vector>

namespace orvane {

/// One discovered window, as agents see it. Geometry in global points, truncated to integers.
struct WindowInfo {
    QString appName;
    /// Empty when there is none.
    QString windowTitle;
    qint32 pid = 0;
    /// 0 when the window has no counterpart on screen.
    qint64 windowId = 0;
    qint64 x = 0;
    qint64 y = 0;
    qint64 width = 0;
    qint64 height = 0;
    /// The display that holds most of the window; 0 when none does.
    quint32 displayId = 0;
    /// "x,y,width,height" of that display; "unknown" when there is none.
    QString displayBounds;

    bool operator==(const WindowInfo&) const = default;
};

/// Compact JSON in UTF-8, the keys of each window in the order of the members above.
QByteArray encodeWindowInfos(const std::vector<WindowInfo>& windows);

/// Nothing unless all ten keys are there with values of their types.
std::optional<WindowInfo> decodeWindowInfo(const QJsonObject& object);

} // namespace orvane
