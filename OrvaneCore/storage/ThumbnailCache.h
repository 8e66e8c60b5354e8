#pragma once

#include "OrvaneCore/platform/PngWriter.h"

#include <QImage>
#include <QString>

namespace orvane {

/// The small picture of a session: "thumbnail.png" in its folder, which is all the cache there is.
/// Failures are passed over in silence: a session without one is shown without. Any thread; of two that make
/// the same one at a time the later write counts.
class ThumbnailCache {
public:
    /// The writer outlives this object.
    explicit ThumbnailCache(const PngWriter& pngWriter)
        : m_pngWriter(pngWriter) {}

    /// Null when there is none that can be read.
    static QImage load(const QString& folder);

    /// Makes it from the picture at `source`, 400 pixels wide, unless the folder has one.
    void generate(const QString& source, const QString& folder) const;

    static void invalidate(const QString& folder);

private:
    const PngWriter& m_pngWriter;
};

} // namespace orvane
