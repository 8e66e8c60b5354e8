#pragma once

#include <QString>

#include <exception>

namespace orvane {

/// What capturing and the tools built on it throw. Two texts belong to an error: `description`, for logs and
/// for code that shows it on purpose, and `localizedDescription`, the general text a tool's caller sees when
/// an error was thrown through the tool.
class OrvaneError : public std::exception {
public:
    /// The order is part of what an agent sees: `localizedDescription` carries the number.
    enum class Case {
        windowNotFound,
        invalidArguments,
        displayNotFound,
        captureEncodingFailed,
        permissionDenied,
    };

    static OrvaneError windowNotFound(qint64 windowId);
    static OrvaneError invalidArguments(const QString& message);
    static OrvaneError displayNotFound();
    static OrvaneError captureEncodingFailed();
    static OrvaneError permissionDenied();

    Case errorCase() const { return m_case; }
    QString description() const { return m_description; }
    QString localizedDescription() const;
    /// The description in UTF-8.
    const char* what() const noexcept override { return m_what.constData(); }

private:
    OrvaneError(Case errorCase, const QString& description)
        : m_case(errorCase)
        , m_description(description)
        , m_what(description.toUtf8()) {}

    Case m_case;
    QString m_description;
    QByteArray m_what;
};

} // namespace orvane
