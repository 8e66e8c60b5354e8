#pragma once

#include "OrvaneCore/capture/ScreenCapture.h"
#include "OrvaneCore/recognition/TextRecognizer.h"
#include "OrvaneCore/recording/ScreenRecorder.h"
#include "OrvaneCore/storage/StorageManager.h"

#include <QJsonObject>
#include <QString>

#include <optional>

namespace orvane {

/// The agent's tools that make and read sessions, the folders under `sessions`: one function a tool, from its
/// arguments to its result object. What cannot be done is thrown, or returned as a tool error where its text
/// is meant for the agent. Names of sessions and files are joined to the folder as they come: whoever may
/// call a tool may read what this process may read. Any thread; calls may run side by side.
class SessionTools {
public:
    /// Everything handed in must live as long as this object.
    SessionTools(ScreenRecorder& recorder, const ScreenCapture& screenCapture, TextRecognizer textRecognizer,
                 StorageManager& storage);

    QJsonObject startRecording(const QJsonObject& arguments);
    QJsonObject stopRecording(const QJsonObject& arguments);
    QJsonObject pollRecording(const QJsonObject& arguments);
    QJsonObject readFrame(const QJsonObject& arguments);
    QJsonObject getAnnotations(const QJsonObject& arguments);
    QJsonObject getAnnotationFeedback(const QJsonObject& arguments);

private:
    /// A picture file as an agent gets it. Nothing when it cannot be read as a picture: a client must never
    /// be told that something is a PNG that is none.
    std::optional<QByteArray> agentImage(const QString& path) const;

    ScreenRecorder& m_recorder;
    const ScreenCapture& m_screenCapture;
    TextRecognizer m_textRecognizer;
    StorageManager& m_storage;
};

} // namespace orvane
