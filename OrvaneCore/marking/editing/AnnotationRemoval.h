#pragma once

namespace orvane {

class AnnotationDocument;

// What the delete key does to shapes. Each is false where it finds nothing that the key could be meant for.
// Main thread.

/// Removes the selected annotation where that may be changed, and is true also where it may not: nothing else
/// is to go in its place.
bool removeSelectedAnnotation(AnnotationDocument& document);

/// Removes the newest annotation of those that may be changed.
bool removeLastAnnotation(AnnotationDocument& document);

} // namespace orvane
