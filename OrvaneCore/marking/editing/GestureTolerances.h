#pragma once

#include <QtGlobal>

namespace orvane {

// How far beside a mark, in points, the pointer still means it.

inline constexpr qreal handleTolerance = 12;
inline constexpr qreal outlineTolerance = 8;

} // namespace orvane
