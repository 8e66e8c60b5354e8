#pragma once

#include "OrvaneCore/platform/PngWriter.h"

namespace orvane::test {

/// Encodes nothing.
class BrokenPngWriter final : public PngWriter {
public:
    QByteArray encode(const QImage& /*image*/) const override { return {}; }
};

} // namespace orvane::test
