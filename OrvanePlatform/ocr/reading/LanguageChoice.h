#pragma once

#include "OrvanePlatform/ocr/reading/Reading.h"

#include <QString>
#include <QStringList>

#include <map>
#include <vector>

namespace orvane::ocr {

/// What engines read in the picture of one line, by language (BCP 47).
using Readings = std::map<QString, Reading>;

/// Whether a line that was read in the preferred language may well be in another one. The shorter it is the
/// less it says, and the more certain it has to be.
bool isDoubtful(const Reading& reading);

/// Whether a reading leaves no room for another language: it is certain enough and in a script that no other
/// language here has.
bool isUnmistakable(const QString& language, const Reading& reading);

/// The order in which languages are asked about a line until one answer settles it: the preferred one, which
/// is the first, and then those that settle most.
QStringList inOrderOfAsking(const QStringList& languages);

/// Whether what another language than the preferred one made of a doubtful line spares the rest the look at
/// it. `preferred`: what the preferred language made of it.
bool isSettledBy(const QString& language, const Reading& reading, const Reading& preferred);

/// The best reading of each line. `languages`: the preferred first, which wins unless another language reads
/// the line in its own script and with more confidence; between two of those the picture as a whole has a
/// say, because its lines are mostly in one language.
std::vector<Reading> chooseReadings(const std::vector<Readings>& lines, const QStringList& languages);

} // namespace orvane::ocr
