#pragma once

#include "OrvaneCore/send/SendTarget.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace orvane {

/// Puts pictures and a text into another application's input field.
class DirectSender {
public:
    virtual ~DirectSender() = default;

    /// The PNGs of `regions` in their order, then `metadata`. Goes over the clipboard, which holds the last
    /// of them afterwards; where the application cannot be reached, nothing is touched. Blocks for seconds;
    /// any thread, one call at a time. Does not throw.
    virtual SendOutcome send(const std::vector<QByteArray>& regions, const std::optional<QString>& metadata,
                             const SendTarget& target) = 0;

protected:
    DirectSender() = default;
    DirectSender(const DirectSender&) = default;
    DirectSender& operator=(const DirectSender&) = default;
};

} // namespace orvane
