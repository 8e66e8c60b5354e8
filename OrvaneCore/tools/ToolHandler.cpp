#include "OrvaneCore/tools/ToolHandler.h"

#include "OrvaneCore/capture/OrvaneError.h"
#include "OrvaneCore/tools/CaptureTools.h"
#include "OrvaneCore/tools/SessionTools.h"
#include "OrvaneCore/tools/ToolResult.h"

#include <algorithm>

namespace orvane {

using namespace Qt::StringLiterals;

const std::vector<ToolHandler::Tool>& ToolHandler::tools() {
    using Arguments = QJsonObject;
    const auto capture = [](QJsonObject (CaptureTools::*tool)(const Arguments&)) {
        return [tool](const ToolHandler& handler, const Arguments& arguments) {
            return (handler.m_captureTools.*tool)(arguments);
        };
    };
    const auto session = [](QJsonObject (SessionTools::*tool)(const Arguments&)) {
        return [tool](const ToolHandler& handler, const Arguments& arguments) {
            return (handler.m_sessionTools.*tool)(arguments);
        };
    };
    static const std::vector<Tool> all{
        {"list_windows", capture(&CaptureTools::listWindows)},
        {"capture_window", capture(&CaptureTools::captureWindow)},
        {"capture_region", capture(&CaptureTools::captureRegion)},
        {"activate_window", capture(&CaptureTools::activateWindow)},
        {"capture_window_region", capture(&CaptureTools::captureWindowRegion)},
        {"capture_annotated", capture(&CaptureTools::captureAnnotated)},
        {"capture_diff", capture(&CaptureTools::captureDiff)},
        {"start_recording", session(&SessionTools::startRecording)},
        {"stop_recording", session(&SessionTools::stopRecording)},
        {"poll_recording", session(&SessionTools::pollRecording)},
        {"read_frame", session(&SessionTools::readFrame)},
        {"get_annotations", session(&SessionTools::getAnnotations)},
        {"annotate_understanding", {}},
        {"get_annotation_feedback", session(&SessionTools::getAnnotationFeedback)},
    };
    return all;
}

QStringList ToolHandler::toolNames() {
    QStringList names;
    for (const Tool& tool : tools())
        names.append(QLatin1String(tool.name));
    return names;
}

QJsonObject ToolHandler::handleToolCall(const QString& name, const QJsonObject& arguments) {
    const auto tool = std::find_if(tools().begin(), tools().end(), [&name](const Tool& candidate) {
        return name == QLatin1String(candidate.name);
    });
    if (tool == tools().end())
        return toolError(u"Unknown tool: "_s + name);
    if (!tool->call)
        return toolError(u"Not available in this build: "_s + name);
    try {
        return tool->call(*this, arguments);
    } catch (const OrvaneError& error) {
        return toolError(error.localizedDescription());
    } catch (const std::exception& error) {
        return toolError(QString::fromUtf8(error.what()));
    }
}

} // namespace orvane
