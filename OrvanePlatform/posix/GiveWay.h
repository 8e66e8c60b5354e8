#pragma once

namespace orvane::posix {

/// Makes the calling thread give way to all others from now on, for the processor and for the disk. Where
/// that cannot be had, it goes on as before.
void giveWay();

} // namespace orvane::posix
