#pragma once

#include "OrvaneCore/platform/SettingsStore.h"

#include <QString>

#include <optional>

namespace orvane {

/// How a human's recordings are made. Each setting is read from the store at the call; a value of another
/// type counts as absent. Any thread.
class RecordingSettings {
public:
    /// The store must outlive this object.
    explicit RecordingSettings(SettingsStore& settings)
        : m_settings(settings) {}

    /// True unless set to false.
    bool saveRawVideo() const;
    void setSaveRawVideo(bool save);

    /// Frames a second, 1 to 60; 30 unless above 0.
    int videoFps() const;
    void setVideoFps(int framesPerSecond);

    /// True unless set to false.
    bool showCursorInRecording() const;
    void setShowCursorInRecording(bool show);

    bool enableCamera() const;
    void setEnableCamera(bool enable);

    /// 0, 1 or 2; 1 for anything else. Setting it also sets the diameter: 80, 120 or 180.
    int cameraSize() const;
    void setCameraSize(int size);

    /// Points, 60 to 240; 120 unless above 0.
    int cameraDiameter() const;
    void setCameraDiameter(int diameter);

    /// "none" when absent.
    QString cameraBorderColor() const;
    void setCameraBorderColor(const QString& color);

    /// "bottom-right" when absent.
    QString cameraPosition() const;
    void setCameraPosition(const QString& position);

    /// Nothing: the system's default camera. Setting nothing removes the key.
    std::optional<QString> cameraDeviceId() const;
    void setCameraDeviceId(const std::optional<QString>& id);

    bool enableMic() const;
    void setEnableMic(bool enable);

    /// Nothing: the system's default microphone. Setting nothing removes the key.
    std::optional<QString> micDeviceId() const;
    void setMicDeviceId(const std::optional<QString>& id);

private:
    SettingsStore& m_settings;
};

} // namespace orvane
