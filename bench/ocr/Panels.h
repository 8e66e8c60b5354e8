#pragma once

#include "bench/ocr/TextPool.h"

#include <QImage>

#include <vector>

namespace orvane::bench {

/// A picture of a piece of an interface with several lines.
struct Panel {
    QImage picture;
    QStringList lines;
    QString kind;
};

/// One of each: a dialog with buttons, a table with and one without lines, a menu, code, and two panes of
/// which the left one has the other theme.
std::vector<Panel> drawPanels(const TextPool& pool, const QString& family, const QString& codeFamily,
                              int pixelSize, bool isDark, Random& random);

} // namespace orvane::bench
