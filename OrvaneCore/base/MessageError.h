#pragma once

#include <QString>

#include <stdexcept>

namespace orvane {

/// Why a text is not a JSON message, or why a reply cannot be made into one.
class MessageError : public std::runtime_error {
public:
    explicit MessageError(const QString& message)
        : std::runtime_error(message.toStdString()) {}

    QString message() const { return QString::fromUtf8(what()); }
};

} // namespace orvane
