#include "OrvaneCore/settings/LoginItem.h"

#include "OrvaneCore/platform/PlatformError.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace orvane {
namespace {

using namespace Qt::StringLiterals;

class FakeAutostartEntry : public AutostartEntry {
public:
    bool isRegistered() const override { return m_registered; }

    void registerEntry() override { change("register", true); }
    void unregisterEntry() override { change("unregister", false); }

    bool m_registered = false;
    std::optional<QString> m_failure;
    std::vector<std::string> m_calls;

private:
    void change(const char* call, bool registered) {
        m_calls.emplace_back(call);
        if (m_failure)
            throw PlatformError(*m_failure);
        m_registered = registered;
    }
};

class LoginItemTest : public ::testing::Test {
protected:
    using Calls = std::vector<std::string>;

    std::string logOfSetting(bool enabled) {
        testing::internal::CaptureStderr();
        m_item.setEnabled(enabled);
        return testing::internal::GetCapturedStderr();
    }

    FakeAutostartEntry m_entry;
    LoginItem m_item{m_entry};
};

TEST_F(LoginItemTest, IsWhatTheDesktopSays) {
    EXPECT_FALSE(m_item.isEnabled());
    m_entry.m_registered = true;
    EXPECT_TRUE(m_item.isEnabled());
}

TEST_F(LoginItemTest, RegistersAndUnregisters) {
    EXPECT_EQ(logOfSetting(true), "");
    EXPECT_TRUE(m_item.isEnabled());
    EXPECT_EQ(logOfSetting(false), "");
    EXPECT_FALSE(m_item.isEnabled());
    EXPECT_EQ(m_entry.m_calls, (Calls{"register", "unregister"}));
}

TEST_F(LoginItemTest, DoesNothingWhenItIsSoAlready) {
    m_item.setEnabled(false);
    EXPECT_EQ(m_entry.m_calls, Calls{});
    m_entry.m_registered = true;
    m_item.setEnabled(true);
    EXPECT_EQ(m_entry.m_calls, Calls{});
}

TEST_F(LoginItemTest, LogsAFailureAndChangesNothing) {
    m_entry.m_failure = u"The disk is full."_s;
    EXPECT_EQ(logOfSetting(true), "orvane: login item register failed: The disk is full.\n");
    EXPECT_FALSE(m_item.isEnabled());
    m_entry.m_registered = true;
    EXPECT_EQ(logOfSetting(false), "orvane: login item unregister failed: The disk is full.\n");
    EXPECT_TRUE(m_item.isEnabled());
    EXPECT_EQ(m_entry.m_calls, (Calls{"register", "unregister"}));
}

TEST_F(LoginItemTest, TriesAgainAfterAFailure) {
    m_entry.m_failure = u"Not now."_s;
    logOfSetting(true);
    m_entry.m_failure.reset();
    EXPECT_EQ(logOfSetting(true), "");
    EXPECT_TRUE(m_item.isEnabled());
}

} // namespace
} // namespace orvane
