#include "OrvaneCore/base/Log.h"

#include <QtGlobal>

#include <gtest/gtest.h>

namespace orvane {
namespace {

class QtMessagesTest : public testing::Test {
protected:
    void SetUp() override { logQtMessages(); }
    void TearDown() override { qInstallMessageHandler(nullptr); }

    static std::string logged(const char* message) {
        testing::internal::CaptureStderr();
        qWarning("%s", message);
        return testing::internal::GetCapturedStderr();
    }
};

TEST_F(QtMessagesTest, AreLinesOfOurOwn) {
    EXPECT_EQ(logged("odd \"thing\""), "orvane: odd \"thing\"\n");
    EXPECT_EQ(logged("one\ntwo\n\nthree\n"), "orvane: one\norvane: two\norvane: three\n");
}

TEST_F(QtMessagesTest, TheRuntimeFolderIsNoMatter) {
    EXPECT_EQ(logged("QStandardPaths: XDG_RUNTIME_DIR not set, defaulting to '/tmp/runtime-x'"), "");
    EXPECT_EQ(logged("QStandardPaths: wrong permissions on runtime directory /x, 0755 instead of 0700"), "");
    EXPECT_EQ(logged("about QStandardPaths: x"), "orvane: about QStandardPaths: x\n");
}

} // namespace
} // namespace orvane
