#pragma once

namespace orvane {

/// The face an agent starts: a tool server on the standard streams. Returns when standard input ends.
void runToolFace();

} // namespace orvane
