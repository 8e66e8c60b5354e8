#include "OrvaneCore/storage/RecordingSettings.h"

#include "OrvaneCore/storage/TypedSettings.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace orvane {

namespace {

constexpr QLatin1String saveRawVideoKey("SaveRawVideo");
constexpr QLatin1String videoFpsKey("VideoFps");
constexpr QLatin1String showCursorKey("ShowCursorInRecording");
constexpr QLatin1String enableCameraKey("EnableCamera");
constexpr QLatin1String cameraSizeKey("CameraSize");
constexpr QLatin1String cameraDiameterKey("CameraDiameter");
constexpr QLatin1String cameraBorderColorKey("CameraBorderColor");
constexpr QLatin1String cameraPositionKey("CameraPosition");
constexpr QLatin1String cameraDeviceIdKey("CameraDeviceId");
constexpr QLatin1String enableMicKey("EnableMic");
constexpr QLatin1String micDeviceIdKey("MicDeviceId");

constexpr int defaultVideoFps = 30;
constexpr int defaultCameraSize = 1;
constexpr int defaultCameraDiameter = 120;
constexpr std::array diameterOfCameraSize{80, 120, 180};

int clampVideoFps(int framesPerSecond) {
    return std::clamp(framesPerSecond, 1, 60);
}

int clampCameraDiameter(int diameter) {
    return std::clamp(diameter, 60, 240);
}

} // namespace

bool RecordingSettings::saveRawVideo() const {
    return typed_settings::boolean(m_settings, saveRawVideoKey, true);
}

void RecordingSettings::setSaveRawVideo(bool save) {
    m_settings.setValue(saveRawVideoKey, save);
}

int RecordingSettings::videoFps() const {
    return clampVideoFps(typed_settings::positiveInteger(m_settings, videoFpsKey, defaultVideoFps));
}

void RecordingSettings::setVideoFps(int framesPerSecond) {
    m_settings.setValue(videoFpsKey, clampVideoFps(framesPerSecond));
}

bool RecordingSettings::showCursorInRecording() const {
    return typed_settings::boolean(m_settings, showCursorKey, true);
}

void RecordingSettings::setShowCursorInRecording(bool show) {
    m_settings.setValue(showCursorKey, show);
}

bool RecordingSettings::enableCamera() const {
    return typed_settings::boolean(m_settings, enableCameraKey, false);
}

void RecordingSettings::setEnableCamera(bool enable) {
    m_settings.setValue(enableCameraKey, enable);
}

int RecordingSettings::cameraSize() const {
    const int size = typed_settings::integer(m_settings, cameraSizeKey).value_or(defaultCameraSize);
    return size >= 0 && size <= 2 ? size : defaultCameraSize;
}

void RecordingSettings::setCameraSize(int size) {
    const int stored = std::clamp(size, 0, 2);
    m_settings.setValue(cameraSizeKey, stored);
    setCameraDiameter(diameterOfCameraSize.at(static_cast<std::size_t>(stored)));
}

int RecordingSettings::cameraDiameter() const {
    return clampCameraDiameter(
        typed_settings::positiveInteger(m_settings, cameraDiameterKey, defaultCameraDiameter));
}

void RecordingSettings::setCameraDiameter(int diameter) {
    m_settings.setValue(cameraDiameterKey, clampCameraDiameter(diameter));
}

QString RecordingSettings::cameraBorderColor() const {
    return typed_settings::text(m_settings, cameraBorderColorKey).value_or(QStringLiteral("none"));
}

void RecordingSettings::setCameraBorderColor(const QString& color) {
    m_settings.setValue(cameraBorderColorKey, color);
}

QString RecordingSettings::cameraPosition() const {
    return typed_settings::text(m_settings, cameraPositionKey).value_or(QStringLiteral("bottom-right"));
}

void RecordingSettings::setCameraPosition(const QString& position) {
    m_settings.setValue(cameraPositionKey, position);
}

std::optional<QString> RecordingSettings::cameraDeviceId() const {
    return typed_settings::text(m_settings, cameraDeviceIdKey);
}

void RecordingSettings::setCameraDeviceId(const std::optional<QString>& id) {
    typed_settings::setText(m_settings, cameraDeviceIdKey, id);
}

bool RecordingSettings::enableMic() const {
    return typed_settings::boolean(m_settings, enableMicKey, false);
}

void RecordingSettings::setEnableMic(bool enable) {
    m_settings.setValue(enableMicKey, enable);
}

std::optional<QString> RecordingSettings::micDeviceId() const {
    return typed_settings::text(m_settings, micDeviceIdKey);
}

void RecordingSettings::setMicDeviceId(const std::optional<QString>& id) {
    typed_settings::setText(m_settings, micDeviceIdKey, id);
}

} // namespace orvane
