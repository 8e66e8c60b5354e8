#pragma once

#include <QStringView>

namespace orvane {

/// Writes "orvane: ", the message and a line feed to standard error, in one write. A space stands for each
/// control character of the message, so that it is one line and nothing that a terminal obeys.
/// Standard output belongs to the tool server's replies, so nothing else may be used for logging.
/// Any thread.
void logLine(QStringView message);

/// The same without the prefix, for the lines whose whole text is fixed.
void logBareLine(QStringView line);

/// From now on what Qt has to say is logged by logLine as well, line by line, but for what it misses about
/// the user's runtime folder.
void logQtMessages();

} // namespace orvane
