#include "OrvaneCore/storage/RecordingSettings.h"

#include "tests/support/InMemorySettings.h"

#include <gtest/gtest.h>

#include <QJsonArray>

#include <vector>

namespace orvane {
namespace {

class RecordingSettingsTest : public testing::Test {
protected:
    void store(const char* key, const QJsonValue& value) {
        m_settings.setValue(QString::fromLatin1(key), value);
    }
    QJsonValue stored(const char* key) const { return m_settings.value(QString::fromLatin1(key)); }

    test::InMemorySettings m_settings;
    RecordingSettings m_recording{m_settings};
};

const std::vector<QJsonValue> notNumbers{
    QJsonValue(QJsonValue::Undefined), QJsonValue(QJsonValue::Null), QJsonValue(true),
    QJsonValue(QStringLiteral("45")),  QJsonValue(QJsonArray{45}),   QJsonValue(QJsonObject())};
const std::vector<QJsonValue> notBooleans{QJsonValue(QJsonValue::Undefined),
                                          QJsonValue(QJsonValue::Null),
                                          QJsonValue(0),
                                          QJsonValue(1),
                                          QJsonValue(QStringLiteral("true")),
                                          QJsonValue(QStringLiteral("false")),
                                          QJsonValue(QJsonArray{true})};
const std::vector<QJsonValue> notTexts{QJsonValue(QJsonValue::Undefined), QJsonValue(QJsonValue::Null),
                                       QJsonValue(7), QJsonValue(true), QJsonValue(QJsonArray())};

TEST_F(RecordingSettingsTest, NumbersOfAnotherTypeReadAsTheDefault) {
    for (const QJsonValue& value : notNumbers) {
        for (const char* key : {"VideoFps", "CameraSize", "CameraDiameter"})
            store(key, value);
        EXPECT_EQ(m_recording.videoFps(), 30);
        EXPECT_EQ(m_recording.cameraSize(), 1);
        EXPECT_EQ(m_recording.cameraDiameter(), 120);
    }
}

TEST_F(RecordingSettingsTest, FrameRateIsClampedBothWays) {
    const std::vector<std::pair<QJsonValue, int>> cases{{0, 30},  {-1, 30},  {1, 1},      {60, 60},
                                                        {61, 60}, {500, 60}, {1e300, 60}, {24.5, 30}};
    for (const auto& [value, expected] : cases) {
        store("VideoFps", value);
        EXPECT_EQ(m_recording.videoFps(), expected) << value.toDouble();
    }
    const std::vector<std::pair<int, int>> written{{-3, 1}, {0, 1}, {24, 24}, {61, 60}};
    for (const auto& [given, expected] : written) {
        m_recording.setVideoFps(given);
        EXPECT_EQ(stored("VideoFps"), QJsonValue(expected)) << given;
    }
}

TEST_F(RecordingSettingsTest, CameraSizeBeyondItsRangeReadsAsOne) {
    const std::vector<std::pair<QJsonValue, int>> cases{{-1, 1}, {7, 1}, {3, 1},    {0, 0},
                                                        {1, 1},  {2, 2}, {1e300, 1}};
    for (const auto& [value, expected] : cases) {
        store("CameraSize", value);
        EXPECT_EQ(m_recording.cameraSize(), expected) << value.toDouble();
    }
}

TEST_F(RecordingSettingsTest, WritingTheCameraSizeClampsItAndWritesTheDiameter) {
    struct Case {
        int given;
        int size;
        int diameter;
    };
    for (const Case& c :
         {Case{-4, 0, 80}, Case{0, 0, 80}, Case{1, 1, 120}, Case{2, 2, 180}, Case{7, 2, 180}}) {
        m_recording.setCameraSize(c.given);
        EXPECT_EQ(m_settings.values(), (QJsonObject{{QStringLiteral("CameraSize"), c.size},
                                                    {QStringLiteral("CameraDiameter"), c.diameter}}))
            << c.given;
    }
}

TEST_F(RecordingSettingsTest, CameraDiameterIsClampedBothWays) {
    const std::vector<std::pair<QJsonValue, int>> cases{{0, 120}, {-1, 120},  {1, 60},    {10, 60},
                                                        {60, 60}, {240, 240}, {241, 240}, {99.5, 120}};
    for (const auto& [value, expected] : cases) {
        store("CameraDiameter", value);
        EXPECT_EQ(m_recording.cameraDiameter(), expected) << value.toDouble();
    }
    const std::vector<std::pair<int, int>> written{{-3, 60}, {59, 60}, {100, 100}, {500, 240}};
    for (const auto& [given, expected] : written) {
        m_recording.setCameraDiameter(given);
        EXPECT_EQ(stored("CameraDiameter"), QJsonValue(expected)) << given;
    }
}

TEST_F(RecordingSettingsTest, SwitchesOfAnotherTypeReadAsTheirDefault) {
    for (const QJsonValue& value : notBooleans) {
        for (const char* key : {"SaveRawVideo", "ShowCursorInRecording", "EnableCamera", "EnableMic"})
            store(key, value);
        EXPECT_TRUE(m_recording.saveRawVideo());
        EXPECT_TRUE(m_recording.showCursorInRecording());
        EXPECT_FALSE(m_recording.enableCamera());
        EXPECT_FALSE(m_recording.enableMic());
    }
}

TEST_F(RecordingSettingsTest, EachSwitchIsReadAndWrittenUnderItsOwnKey) {
    struct Switch {
        const char* key;
        bool (RecordingSettings::*get)() const;
        void (RecordingSettings::*set)(bool);
    };
    const std::vector<Switch> switches{
        {"SaveRawVideo", &RecordingSettings::saveRawVideo, &RecordingSettings::setSaveRawVideo},
        {"ShowCursorInRecording", &RecordingSettings::showCursorInRecording,
         &RecordingSettings::setShowCursorInRecording},
        {"EnableCamera", &RecordingSettings::enableCamera, &RecordingSettings::setEnableCamera},
        {"EnableMic", &RecordingSettings::enableMic, &RecordingSettings::setEnableMic},
    };
    for (const Switch& s : switches) {
        for (const bool on : {true, false}) {
            store(s.key, on);
            EXPECT_EQ((m_recording.*s.get)(), on) << s.key;
            (m_recording.*s.set)(!on);
            EXPECT_EQ(stored(s.key), QJsonValue(!on)) << s.key;
        }
    }
    EXPECT_EQ(m_settings.values().size(), 4);
}

TEST_F(RecordingSettingsTest, TextsOfAnotherTypeReadAsTheirDefault) {
    for (const QJsonValue& value : notTexts) {
        for (const char* key : {"CameraBorderColor", "CameraPosition", "CameraDeviceId", "MicDeviceId"})
            store(key, value);
        EXPECT_EQ(m_recording.cameraBorderColor(), QStringLiteral("none"));
        EXPECT_EQ(m_recording.cameraPosition(), QStringLiteral("bottom-right"));
        EXPECT_EQ(m_recording.cameraDeviceId(), std::nullopt);
        EXPECT_EQ(m_recording.micDeviceId(), std::nullopt);
    }
}

TEST_F(RecordingSettingsTest, TextsAreStoredAsGiven) {
    m_recording.setCameraBorderColor(QStringLiteral("weiß"));
    m_recording.setCameraPosition(QStringLiteral("top-left"));
    m_recording.setCameraDeviceId(QStringLiteral("/dev/video0"));
    m_recording.setMicDeviceId(QStringLiteral("マイク"));
    EXPECT_EQ(m_settings.values(),
              (QJsonObject{{QStringLiteral("CameraBorderColor"), QStringLiteral("weiß")},
                           {QStringLiteral("CameraPosition"), QStringLiteral("top-left")},
                           {QStringLiteral("CameraDeviceId"), QStringLiteral("/dev/video0")},
                           {QStringLiteral("MicDeviceId"), QStringLiteral("マイク")}}));
    EXPECT_EQ(m_recording.cameraBorderColor(), QStringLiteral("weiß"));
    EXPECT_EQ(m_recording.cameraPosition(), QStringLiteral("top-left"));
    EXPECT_EQ(m_recording.cameraDeviceId(), QStringLiteral("/dev/video0"));
    EXPECT_EQ(m_recording.micDeviceId(), QStringLiteral("マイク"));
}

TEST_F(RecordingSettingsTest, NoDeviceClearsTheKey) {
    m_recording.setCameraDeviceId(QStringLiteral("a"));
    m_recording.setMicDeviceId(QStringLiteral("b"));
    m_recording.setCameraDeviceId(std::nullopt);
    m_recording.setMicDeviceId(std::nullopt);
    EXPECT_TRUE(m_settings.values().isEmpty());
}

} // namespace
} // namespace orvane
