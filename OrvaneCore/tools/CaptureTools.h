#pragma once

#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/capture/WindowDiscovery.h"
#include "OrvaneCore/recognition/TextRecognizer.h"
#include "OrvaneCore/storage/StorageManager.h"
#include "OrvaneCore/tools/CaptureFiles.h"

#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QString>

#include <functional>
#include <mutex>
#include <optional>

namespace orvane {

/// The agent's tools that look at the screen: one function a tool, from its arguments to its result object.
/// What cannot be done is thrown, or returned as a tool error where its text is meant for the agent.
/// Any thread; calls may run side by side, and the mutex is held only while the pending 'before' captures are
/// looked at, never during a capture. Drawing needs a QGuiApplication.
class CaptureTools {
public:
    using WallClock = std::function<QDateTime()>;

    /// Makes the data folders. Everything handed in must live as long as this object.
    CaptureTools(WindowDiscovery& discovery, ScreenCapture& screenCapture, TextRecognizer textRecognizer,
                 StorageManager& storage, const PngWriter& pngWriter,
                 WallClock clock = &QDateTime::currentDateTimeUtc);

    QJsonObject listWindows(const QJsonObject& arguments);
    QJsonObject activateWindow(const QJsonObject& arguments);
    QJsonObject captureWindow(const QJsonObject& arguments);
    QJsonObject captureWindowRegion(const QJsonObject& arguments);
    QJsonObject captureRegion(const QJsonObject& arguments);
    QJsonObject captureAnnotated(const QJsonObject& arguments);
    QJsonObject captureDiff(const QJsonObject& arguments);

private:
    /// A 'before' capture that waits for its 'after'.
    struct PendingDiff {
        QByteArray agentPng;
        QDateTime timestamp;
    };

    /// The first window of the application. Throws OrvaneError::invalidArguments with the text of `notFound`.
    WindowInfo findWindow(const QString& appName, const std::function<QString()>& notFound);
    WindowInfo findWindow(const QString& appName);
    /// The end of a reply: the text in the picture, when it is asked for and there is some.
    QString recognizedTextIfRequested(const QJsonObject& arguments, const QImage& picture) const;
    std::optional<PendingDiff> exchangeDiff(const QString& key, const PendingDiff& latest);

    WindowDiscovery& m_discovery;
    ScreenCapture& m_screenCapture;
    TextRecognizer m_textRecognizer;
    WallClock m_clock;
    CaptureFiles m_files;
    std::mutex m_mutex;
    QHash<QString, PendingDiff> m_diffStore;
};

} // namespace orvane
