#pragma once

#include <QString>

namespace orvane::posix {

/// Where the running executable lies, with every link in the path resolved; the name it was started by where
/// the system does not tell.
QString executablePath();

bool standardErrorIsTerminal();

} // namespace orvane::posix
