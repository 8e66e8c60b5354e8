#include "tests/unit/storage/StorageFixture.h"

#include <QJsonArray>

#include <vector>

namespace orvane {
namespace {

class StorageSettings : public StorageFixture {
protected:
    void store(const char* key, const QJsonValue& value) {
        m_settings.setValue(QString::fromLatin1(key), value);
    }
    QJsonValue stored(const char* key) const { return m_settings.value(QString::fromLatin1(key)); }
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

TEST_F(StorageSettings, NumbersOfAnotherTypeReadAsTheDefault) {
    for (const QJsonValue& value : notNumbers) {
        for (const char* key : {"StorageRetentionDays", "VideoFps", "CameraSize", "CameraDiameter"}) {
            store(key, value);
        }
        EXPECT_EQ(m_storage.retentionDays(), 30);
        EXPECT_EQ(m_storage.videoFps(), 30);
        EXPECT_EQ(m_storage.cameraSize(), 1);
        EXPECT_EQ(m_storage.cameraDiameter(), 120);
    }
}

TEST_F(StorageSettings, RetentionIsThirtyDaysUnlessAboveZero) {
    const std::vector<std::pair<QJsonValue, int>> cases{
        {0, 30}, {-5, 30}, {1, 1}, {120, 120}, {7.0, 7}, {7.5, 30}, {-1e300, 30}, {1e300, 2147483647}};
    for (const auto& [value, expected] : cases) {
        store("StorageRetentionDays", value);
        EXPECT_EQ(m_storage.retentionDays(), expected) << value.toDouble();
    }
}

TEST_F(StorageSettings, RetentionIsStoredAsGiven) {
    for (const int days : {-5, 0, 1, 400}) {
        m_storage.setRetentionDays(days);
        EXPECT_EQ(stored("StorageRetentionDays"), QJsonValue(days));
    }
}

TEST_F(StorageSettings, FrameRateIsClampedBothWays) {
    const std::vector<std::pair<QJsonValue, int>> cases{{0, 30},  {-1, 30},  {1, 1},      {60, 60},
                                                        {61, 60}, {500, 60}, {1e300, 60}, {24.5, 30}};
    for (const auto& [value, expected] : cases) {
        store("VideoFps", value);
        EXPECT_EQ(m_storage.videoFps(), expected) << value.toDouble();
    }
    const std::vector<std::pair<int, int>> written{{-3, 1}, {0, 1}, {24, 24}, {61, 60}};
    for (const auto& [given, expected] : written) {
        m_storage.setVideoFps(given);
        EXPECT_EQ(stored("VideoFps"), QJsonValue(expected)) << given;
    }
}

TEST_F(StorageSettings, CameraSizeBeyondItsRangeReadsAsOne) {
    const std::vector<std::pair<QJsonValue, int>> cases{{-1, 1}, {7, 1}, {3, 1},    {0, 0},
                                                        {1, 1},  {2, 2}, {1e300, 1}};
    for (const auto& [value, expected] : cases) {
        store("CameraSize", value);
        EXPECT_EQ(m_storage.cameraSize(), expected) << value.toDouble();
    }
}

TEST_F(StorageSettings, WritingTheCameraSizeClampsItAndWritesTheDiameter) {
    struct Case {
        int given;
        int size;
        int diameter;
    };
    for (const Case& c :
         {Case{-4, 0, 80}, Case{0, 0, 80}, Case{1, 1, 120}, Case{2, 2, 180}, Case{7, 2, 180}}) {
        m_storage.setCameraSize(c.given);
        EXPECT_EQ(m_settings.values(), (QJsonObject{{QStringLiteral("CameraSize"), c.size},
                                                    {QStringLiteral("CameraDiameter"), c.diameter}}))
            << c.given;
    }
}

TEST_F(StorageSettings, CameraDiameterIsClampedBothWays) {
    const std::vector<std::pair<QJsonValue, int>> cases{{0, 120}, {-1, 120},  {1, 60},    {10, 60},
                                                        {60, 60}, {240, 240}, {241, 240}, {99.5, 120}};
    for (const auto& [value, expected] : cases) {
        store("CameraDiameter", value);
        EXPECT_EQ(m_storage.cameraDiameter(), expected) << value.toDouble();
    }
    const std::vector<std::pair<int, int>> written{{-3, 60}, {59, 60}, {100, 100}, {500, 240}};
    for (const auto& [given, expected] : written) {
        m_storage.setCameraDiameter(given);
        EXPECT_EQ(stored("CameraDiameter"), QJsonValue(expected)) << given;
    }
}

TEST_F(StorageSettings, SwitchesOfAnotherTypeReadAsTheirDefault) {
    for (const QJsonValue& value : notBooleans) {
        for (const char* key :
             {"SaveRawVideo", "ShowCursorInRecording", "EnableCamera", "EnableMic", "HasOnboarded"}) {
            store(key, value);
        }
        EXPECT_TRUE(m_storage.saveRawVideo());
        EXPECT_TRUE(m_storage.showCursorInRecording());
        EXPECT_FALSE(m_storage.enableCamera());
        EXPECT_FALSE(m_storage.enableMic());
        EXPECT_FALSE(m_storage.hasOnboarded());
    }
}

TEST_F(StorageSettings, EachSwitchIsReadAndWrittenUnderItsOwnKey) {
    struct Switch {
        const char* key;
        bool (StorageManager::*get)() const;
        void (StorageManager::*set)(bool);
    };
    const std::vector<Switch> switches{
        {"SaveRawVideo", &StorageManager::saveRawVideo, &StorageManager::setSaveRawVideo},
        {"ShowCursorInRecording", &StorageManager::showCursorInRecording,
         &StorageManager::setShowCursorInRecording},
        {"EnableCamera", &StorageManager::enableCamera, &StorageManager::setEnableCamera},
        {"EnableMic", &StorageManager::enableMic, &StorageManager::setEnableMic},
        {"HasOnboarded", &StorageManager::hasOnboarded, &StorageManager::setHasOnboarded},
    };
    for (const Switch& s : switches) {
        for (const bool on : {true, false}) {
            store(s.key, on);
            EXPECT_EQ((m_storage.*s.get)(), on) << s.key;
            (m_storage.*s.set)(!on);
            EXPECT_EQ(stored(s.key), QJsonValue(!on)) << s.key;
        }
    }
    EXPECT_EQ(m_settings.values().size(), 5);
}

TEST_F(StorageSettings, ResettingTheOnboardingWritesFalse) {
    m_storage.setHasOnboarded(true);
    m_storage.resetOnboarding();
    EXPECT_EQ(stored("HasOnboarded"), QJsonValue(false));
    EXPECT_FALSE(m_storage.hasOnboarded());
}

TEST_F(StorageSettings, TextsOfAnotherTypeReadAsTheirDefault) {
    for (const QJsonValue& value : notTexts) {
        for (const char* key : {"CameraBorderColor", "CameraPosition", "CameraDeviceId", "MicDeviceId"}) {
            store(key, value);
        }
        EXPECT_EQ(m_storage.cameraBorderColor(), QStringLiteral("none"));
        EXPECT_EQ(m_storage.cameraPosition(), QStringLiteral("bottom-right"));
        EXPECT_EQ(m_storage.cameraDeviceId(), std::nullopt);
        EXPECT_EQ(m_storage.micDeviceId(), std::nullopt);
    }
}

TEST_F(StorageSettings, TextsAreStoredAsGiven) {
    m_storage.setCameraBorderColor(QStringLiteral("weiß"));
    m_storage.setCameraPosition(QStringLiteral("top-left"));
    m_storage.setCameraDeviceId(QStringLiteral("/dev/video0"));
    m_storage.setMicDeviceId(QStringLiteral("マイク"));
    EXPECT_EQ(m_settings.values(),
              (QJsonObject{{QStringLiteral("CameraBorderColor"), QStringLiteral("weiß")},
                           {QStringLiteral("CameraPosition"), QStringLiteral("top-left")},
                           {QStringLiteral("CameraDeviceId"), QStringLiteral("/dev/video0")},
                           {QStringLiteral("MicDeviceId"), QStringLiteral("マイク")}}));
    EXPECT_EQ(m_storage.cameraBorderColor(), QStringLiteral("weiß"));
    EXPECT_EQ(m_storage.cameraPosition(), QStringLiteral("top-left"));
    EXPECT_EQ(m_storage.cameraDeviceId(), QStringLiteral("/dev/video0"));
    EXPECT_EQ(m_storage.micDeviceId(), QStringLiteral("マイク"));
}

TEST_F(StorageSettings, NoDeviceClearsTheKey) {
    m_storage.setCameraDeviceId(QStringLiteral("a"));
    m_storage.setMicDeviceId(QStringLiteral("b"));
    m_storage.setCameraDeviceId(std::nullopt);
    m_storage.setMicDeviceId(std::nullopt);
    EXPECT_TRUE(m_settings.values().isEmpty());
}

} // namespace
} // namespace orvane
