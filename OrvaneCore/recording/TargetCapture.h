#pragma once

#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/capture/WindowInfo.h"
#include "OrvaneCore/recording/RecordingTarget.h"

#include <QImage>

#include <vector>

namespace orvane {

/// What the report calls the target's application.
QString appNameOf(const RecordingTarget& target);

/// The target in the timeline's first entry; `windows` are those of its application. That of a display is
/// told by its first picture.
QString describeTarget(const RecordingTarget& target, const std::vector<WindowInfo>& windows,
                       const QSize& firstFrame);

/// Takes the pictures of one recording. Any thread; throws what ScreenCapture throws.
class TargetCapture {
public:
    /// `screenCapture` outlives this object.
    TargetCapture(ScreenCapture& screenCapture, RecordingTarget target, bool showsCursor)
        : m_screenCapture(screenCapture)
        , m_target(std::move(target))
        , m_showsCursor(showsCursor) {}

    const RecordingTarget& target() const { return m_target; }

    QImage frame() const;

    /// The last picture. Always one of a window: for anything else OrvaneError::windowNotFound is thrown.
    QImage endFrame() const;

private:
    ScreenCapture& m_screenCapture;
    RecordingTarget m_target;
    bool m_showsCursor;
};

} // namespace orvane
