#pragma once

#include <QIcon>
#include <QString>

class QPainter;
class QRectF;

namespace orvane {

/// The picture of the status item: the pin, or a red record sign while a recording runs.
class StatusIcon {
public:
    /// In a slot of a panel it is 18 points wide, or as wide as a smaller slot; drawn anew for every size and
    /// scale. Main thread.
    static QIcon icon(bool isRecording);

    /// What is said of it to those who cannot see it.
    static QString description(bool isRecording);

    /// The square is in the painter's units.
    static void draw(QPainter& painter, const QRectF& square, bool isRecording);
};

} // namespace orvane
