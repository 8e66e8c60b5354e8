#pragma once

#include <QImage>
#include <QRect>

#include <cstdint>
#include <vector>

namespace orvane::ocr {

/// A connected piece of what is not background: a letter, a stroke, a word whose letters touch, an icon.
struct InkPiece {
    /// Pixels of the picture.
    QRect box;
    /// The number of the background area that surrounds it, or InkMap::ink where there is none.
    int area = 0;
};

/// What of a picture is background and what is ink on it.
///
/// An interface is drawn on even areas: windows, panes, buttons, table cells, selected rows. An area is a
/// connected set of pixels in which neighbours have nearly one colour; the large ones are background, and all
/// else is ink. So dark text on light and light text on dark are found alike and side by side, two texts with
/// a line or a border between them lie on different areas, and a photograph, which has no even areas, is one
/// piece of ink that is far too large for a letter.
class InkMap {
public:
    /// The number of no area.
    static constexpr int ink = -1;

    /// `picture`: Format_RGB32. A strip around it counts as drawn in the colour that dominates its edge, so
    /// that text which touches the edge is surrounded by background too.
    explicit InkMap(const QImage& picture);

    const std::vector<InkPiece>& pieces() const { return m_pieces; }

    /// Whether a piece is the border of a button or a cell and not a letter: most of its box is another area.
    bool isFrame(const InkPiece& piece) const;

    /// Whether the pixels of row y from column `from` up to, but without, column `to` all lie on `area`.
    bool isClear(int y, int from, int to, int area) const;

private:
    void labelAreas(const QImage& padded);
    void labelPieces();
    /// Whether an area of middling size is the face of a button or a cell, and not a stroke of a letter.
    bool isFace(int area, int size, const QRect& box) const;
    int areaAround(const QRect& paddedBox) const;
    int& label(int x, int y) { return m_labels[static_cast<size_t>(y) * m_width + x]; }
    int label(int x, int y) const { return m_labels[static_cast<size_t>(y) * m_width + x]; }

    int m_width = 0;
    int m_height = 0;
    /// Of the picture with its strip: the number of the background area, or `ink`.
    std::vector<int> m_labels;
    std::vector<InkPiece> m_pieces;
};

} // namespace orvane::ocr
