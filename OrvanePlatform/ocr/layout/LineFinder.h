#pragma once

#include <QImage>
#include <QRect>

#include <vector>

namespace orvane::ocr {

/// The place of what looks like one line of text.
struct FoundLine {
    /// The smallest box around its ink, in pixels of the picture.
    QRect box;
    /// The number of the background area it stands on. Lines with one number share a pane, a button, a cell.
    int area = 0;
};

/// A screen of 3840x2160 full of small text in many columns has a third of it; what has more is a pattern.
inline constexpr size_t mostLines = 3000;

/// The lines of a picture (Format_RGB32) in reading order; where there are more than `mostLines`, the
/// topmost. Finds more than text: an icon looks like a short line.
std::vector<FoundLine> findLines(const QImage& picture);

} // namespace orvane::ocr
