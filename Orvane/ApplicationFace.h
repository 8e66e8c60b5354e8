#pragma once

namespace orvane {

/// Runs the tray application to its end and gives the process's exit status. The arguments are not read.
int runApplicationFace(int argc, char* argv[]);

} // namespace orvane
