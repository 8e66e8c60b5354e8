#pragma once

#include <QIcon>
#include <QString>

class QPainter;
class QRectF;

namespace orvane {

/// The picture of the status item: the pin, or a red record sign while a recording runs.
namespace status_icon {

/// In a slot of a panel it is 18 points wide, or as wide as a smaller slot; drawn anew for every size and
/// scale. Main thread.
QIcon icon(bool isRecording);

/// What is said of it to those who cannot see it.
QString description(bool isRecording);

/// The square is in the painter's units.
void draw(QPainter& painter, const QRectF& square, bool isRecording);

} // namespace status_icon

} // namespace orvane
