#pragma once

#include <QString>

namespace orvane::ocr {

/// What was read in the picture of one line.
struct Reading {
    QString text;
    /// The share of the characters that the engine expects to be right, from 0 to 1.
    float confidence = 0;
};

} // namespace orvane::ocr
