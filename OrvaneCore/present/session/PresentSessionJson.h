#pragma once

#include "OrvaneCore/present/session/PresentSession.h"

#include <QByteArray>

#include <optional>

namespace orvane {

// `session.json` as bytes and back. Any thread.

/// Indented JSON in UTF-8 with sorted keys. Points are arrays [x, y], rectangles [[x, y], [width, height]];
/// an optional that holds nothing has no key. Nothing when a number is not finite, which JSON cannot express.
std::optional<QByteArray> encodeSession(const PresentSessionBundle& bundle);

/// Nothing unless it is valid JSON that holds every required key with a value of its type. A stroke's `id`,
/// `label`, `rotation`, `role` and `removed` may be missing and so may what is optional here; a null counts
/// as missing. Integers may be written with a fraction of zero. Keys that nobody knows are ignored. Takes
/// time in proportion to the length.
std::optional<PresentSessionBundle> decodeSession(const QByteArray& json);

} // namespace orvane
