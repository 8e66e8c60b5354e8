#pragma once

#include "OrvaneCore/mcp/ToolCallHandler.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace orvane {

class CaptureTools;
class SessionTools;

/// The agent's tools by name: which function each name of the catalogue calls, and what becomes of what that
/// throws. Any thread; calls may run side by side; no state.
class ToolHandler final : public ToolCallHandler {
public:
    /// Both must live as long as this object.
    ToolHandler(CaptureTools& captureTools, SessionTools& sessionTools)
        : m_captureTools(captureTools)
        , m_sessionTools(sessionTools) {}

    QJsonObject handleToolCall(const QString& name, const QJsonObject& arguments) override;

    /// Every name that `handleToolCall` knows, in the order of the catalogue.
    static QStringList toolNames();

private:
    struct Tool {
        const char* name;
        /// Empty for a tool that this build lists and does not have.
        std::function<QJsonObject(const ToolHandler& handler, const QJsonObject& arguments)> call;
    };
    static const std::vector<Tool>& tools();

    CaptureTools& m_captureTools;
    SessionTools& m_sessionTools;
};

} // namespace orvane
