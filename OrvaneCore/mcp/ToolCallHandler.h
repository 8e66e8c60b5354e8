#pragma once

#include <QJsonObject>
#include <QString>

namespace orvane {

/// What carries out the tools that the server lists.
class ToolCallHandler {
public:
    virtual ~ToolCallHandler() = default;

    /// Runs one tool and gives its result object: `content`, and `isError` where the tool failed. A name that
    /// is not known, the empty one among them, is a failed tool too. Blocks until the tool is done.
    /// Any thread; calls may run side by side. Never throws.
    virtual QJsonObject handleToolCall(const QString& name, const QJsonObject& arguments) = 0;

protected:
    ToolCallHandler() = default;
    ToolCallHandler(const ToolCallHandler&) = default;
    ToolCallHandler& operator=(const ToolCallHandler&) = default;
};

} // namespace orvane
