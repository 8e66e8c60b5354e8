#pragma once

#include "OrvaneCore/marking/submit/SubmitResult.h"

#include <QString>

#include <map>
#include <vector>

namespace orvane {

// The short texts about a session: onto the clipboard, after pictures that are sent, into `ocr.txt`. Agents
// match on their words. All of it is pure. `sessionPath` is the session's folder as it is shown to people.

/// What is to be said of the pictures where something was drawn, as a line; empty where nothing was.
QString drawingsNote(const std::vector<Annotation>& annotations);

/// The index of the region, and what was drawn in it, in the order of drawing.
std::map<int, QString> markupNotes(const std::vector<Annotation>& annotations);

/// The recognised texts in the order of the regions' indices; empty when there are none.
QString aggregateOcrText(const std::vector<Marker>& markers);

/// Where everything is.
QString normalClipboardText(const SubmitResult& result, const QString& sessionPath, bool spotlight);

/// What the pictures are that were sent to the application of that name.
QString directSendMetadataText(const SubmitResult& result, const QString& sessionPath, const QString& target);

} // namespace orvane
