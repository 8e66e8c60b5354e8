#pragma once

#include <QString>

namespace orvane::posix {

/// Where the running executable lies, with every link in the path resolved; the name it was started by where
/// the system does not tell.
QString executablePath();

bool standardErrorIsTerminal();

/// From now on a write to a pipe or socket that nobody reads any more fails (EPIPE) and does not end the
/// process. Its children have what the system does by default (SIGPIPE ends them), however they are started.
void surviveBrokenPipes();

/// Names the user's home folder in the environment (HOME), for this process and its children, where nobody
/// has. Before other threads run.
void nameHomeFolder();

} // namespace orvane::posix
