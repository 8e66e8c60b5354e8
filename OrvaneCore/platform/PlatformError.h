#pragma once

#include <QString>

#include <stdexcept>

namespace orvane {

/// What a platform port throws when the desktop does not give what was asked: a lost connection, a window
/// that closed in the middle, a missing extension. The message is a whole sentence meant for the agent's or
/// the human's eyes and says, where there is something to do, what to do.
class PlatformError : public std::runtime_error {
public:
    explicit PlatformError(const QString& message)
        : std::runtime_error(message.toStdString()) {}

    QString message() const { return QString::fromUtf8(what()); }
};

} // namespace orvane
