#pragma once

namespace orvane {

/// The face an agent starts: a tool server on the standard streams. Returns when standard input ends.
/// Takes what main was given, on the main thread.
void runToolFace(int argc, char* argv[]);

} // namespace orvane
