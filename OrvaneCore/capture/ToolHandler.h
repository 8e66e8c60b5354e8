#pragma once

#include "OrvaneCore/capture/CaptureFiles.h"
#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/capture/WindowDiscovery.h"
#include "OrvaneCore/marking/TextRecognizer.h"
#include "OrvaneCore/mcp/ToolCallHandler.h"
#include "OrvaneCore/storage/StorageManager.h"

#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <mutex>
#include <optional>

namespace orvane {

/// The agent's tools: one handler a name of the catalogue. Any thread; calls may run side by side, and the
/// mutex is held only while the pending 'before' captures are looked at, never during a capture. Drawing
/// needs a QGuiApplication.
class ToolHandler final : public ToolCallHandler {
public:
    using Clock = std::function<QDateTime()>;

    /// Makes the data folders. Everything handed in must live as long as this object.
    ToolHandler(WindowDiscovery& discovery, ScreenCapture& screenCapture, TextRecognizer textRecognizer,
                StorageManager& storage, const PngWriter& pngWriter,
                Clock clock = &QDateTime::currentDateTimeUtc);

    QJsonObject handleToolCall(const QString& name, const QJsonObject& arguments) override;

    /// Every name that `handleToolCall` knows, in the order of the catalogue.
    static QStringList toolNames();

private:
    using Handler = QJsonObject (ToolHandler::*)(const QJsonObject& arguments);
    struct Tool {
        const char* name;
        /// Null for a tool that this build lists and does not have.
        Handler handler;
    };
    static const std::vector<Tool>& tools();

    /// A 'before' capture that waits for its 'after'.
    struct PendingDiff {
        QByteArray agentPng;
        QDateTime timestamp;
    };

    QJsonObject listWindows(const QJsonObject& arguments);
    QJsonObject activateWindow(const QJsonObject& arguments);
    QJsonObject captureWindow(const QJsonObject& arguments);
    QJsonObject captureWindowRegion(const QJsonObject& arguments);
    QJsonObject captureRegion(const QJsonObject& arguments);
    QJsonObject captureAnnotated(const QJsonObject& arguments);
    QJsonObject captureDiff(const QJsonObject& arguments);

    /// The first window of the application. Throws OrvaneError::invalidArguments with the text of `notFound`.
    WindowInfo findWindow(const QString& appName, const std::function<QString()>& notFound);
    WindowInfo findWindow(const QString& appName);
    /// The end of a reply: the text in the picture, when it is asked for and there is some.
    QString recognizedTextIfRequested(const QJsonObject& arguments, const QImage& picture) const;
    std::optional<PendingDiff> exchangeDiff(const QString& key, const PendingDiff& latest);

    WindowDiscovery& m_discovery;
    ScreenCapture& m_screenCapture;
    TextRecognizer m_textRecognizer;
    Clock m_clock;
    CaptureFiles m_files;
    std::mutex m_mutex;
    QHash<QString, PendingDiff> m_diffStore;
};

} // namespace orvane
