#pragma once

#include <QSizeF>

#include <stdexcept>

namespace orvane {

/// A region that no picture can be made of. The message says why and is meant for the agent.
class RegionSizeError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

/// Throws RegionSizeError unless a picture of that many pixels can be made: both sides at least one pixel,
/// none over 16,384 (X11 coordinates are 16 bits wide) and no more than 64 Mi pixels (256 MiB) in all.
/// `asked` is the size in the caller's units, for the message.
void checkRegionSize(const QSizeF& pixels, const QSizeF& asked);

} // namespace orvane
