#pragma once

#include "OrvaneCore/platform/PngWriter.h"

namespace orvane::png {

/// PNG through ISA-L's igzip: a picture is turned into the file's rows, filtered and deflated strip by strip,
/// so that what one step leaves is still in the processor's cache for the next. Which filter its rows get is
/// found out by deflating a sample of them with each.
class IgzipWriter final : public PngWriter {
public:
    QByteArray encode(const QImage& image) const override;
};

} // namespace orvane::png
