#pragma once

#include "OrvaneCore/platform/PngWriter.h"

namespace orvane::png {

/// PNG through libspng, tuned for pictures of screens: their flat areas compress as well without row filters,
/// and a low deflate level costs a fraction of the time of the default for about the same size.
class SpngWriter final : public PngWriter {
public:
    QByteArray encode(const QImage& image) const override;
};

} // namespace orvane::png
