#pragma once

#include "OrvaneCore/marking/submit/SubmitRequest.h"
#include "OrvaneCore/marking/submit/SubmitResult.h"
#include "OrvaneCore/platform/Displays.h"

#include <QDateTime>
#include <QString>

#include <vector>

namespace orvane {

/// The text of a session's SESSION.md: Markdown for people and agents, whose line beginnings are read back by
/// machine. `displays` are as the platform lists them, the primary one first. Pure; any thread.
QString snapshotManifest(const SubmitResult& result, const MarkupModes& modes,
                         const std::vector<Display>& displays, const QDateTime& timestamp);

} // namespace orvane
