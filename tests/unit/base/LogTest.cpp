#include "OrvaneCore/base/Log.h"

#include <QString>

#include <gtest/gtest.h>

namespace orvane {

using namespace Qt::StringLiterals;

TEST(Log, WritesALineForEachMessageWhateverIsInIt) {
    testing::internal::CaptureStderr();
    logLine(u"window \u001b[201~\norvane: forged\r\u2028\u202e\u0085 end"_s);
    logBareLine(u"bare\nline"_s);
    logLine(u"Übersicht — 日本"_s);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: window  [201~ orvane: forged     end\nbare line\norvane: Übersicht — 日本\n");
}

} // namespace orvane
