#pragma once

#include "OrvaneCore/platform/Displays.h"

#include <QString>

#include <optional>
#include <vector>

namespace orvane {

// How displays are counted where marks are submitted. All of it is pure; `displays` are as the platform lists
// them, the primary one first.

/// The first 16 of them, in the platform's order.
std::vector<Display> getDisplays(const std::vector<Display>& displays);

/// The same ones from left to right by their left edges; those with equal edges keep their order.
std::vector<Display> activeDisplaysSorted(const std::vector<Display>& displays);

/// The place in a sorted list, from 1. A display that is not in the list counts as number 1.
int displayNumber(const std::vector<Display>& sorted, quint32 displayId);

/// True for the primary display.
bool isMainDisplay(const std::vector<Display>& displays, quint32 displayId);

/// Pixels a point; 1 for no display and for one that is not in the list.
qreal backingScale(const std::vector<Display>& displays, std::optional<quint32> displayId);

/// "2", "1.5". `scale` is finite.
QString scaleStr(qreal scale);

} // namespace orvane
