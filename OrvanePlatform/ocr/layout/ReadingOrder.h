#pragma once

#include "OrvanePlatform/ocr/layout/LineFinder.h"

namespace orvane::ocr {

/// Puts lines in the order in which they are read: pane by pane from left to right where panes stand side by
/// side, and otherwise row by row from the top, each row from left to right. A table is read row by row,
/// whether or not lines are drawn between its cells.
std::vector<FoundLine> inReadingOrder(std::vector<FoundLine> lines);

} // namespace orvane::ocr
