#pragma once

#include "OrvanePlatform/png/FilteredRows.h"

namespace orvane::png {

/// The filter that makes the picture's file smallest, by what deflating a sample of its rows with each
/// leaves. Where they are close, none: it costs least, here and wherever the file is read.
RowFilter chooseFilter(FilteredRows& rows);

} // namespace orvane::png
