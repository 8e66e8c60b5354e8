#include "OrvaneCore/mcp/http/MCPPort.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Keeps the ports that were asked about.
class Ports {
public:
    explicit Ports(std::vector<int> freeOnes)
        : m_free(std::move(freeOnes)) {}

    std::optional<int> search(int preferred, int range) {
        return mcp_port::firstAvailable(preferred, range, [this](int port) {
            asked.push_back(port);
            return std::find(m_free.begin(), m_free.end(), port) != m_free.end();
        });
    }

    std::vector<int> asked;

private:
    std::vector<int> m_free;
};

TEST(MCPPortTest, TakesThePreferredPortWithoutAskingAboutAnother) {
    Ports ports({47600, 47601});
    EXPECT_EQ(ports.search(47600, 50), 47600);
    EXPECT_THAT(ports.asked, ElementsAre(47600));
}

TEST(MCPPortTest, TakesTheFirstFreeOneInAscendingOrder) {
    Ports ports({47604, 47602, 47599});
    EXPECT_EQ(ports.search(47600, 50), 47602);
    EXPECT_THAT(ports.asked, ElementsAre(47600, 47601, 47602));
}

TEST(MCPPortTest, TakesTheLastOfTheRangeAndNoneBehindIt) {
    EXPECT_EQ(Ports({47649}).search(47600, 50), 47649);
    EXPECT_EQ(Ports({47650}).search(47600, 50), std::nullopt);
}

TEST(MCPPortTest, GivesNothingWhenAllFail) {
    Ports ports({});
    EXPECT_EQ(ports.search(47600, 3), std::nullopt);
    EXPECT_THAT(ports.asked, ElementsAre(47600, 47601, 47602));
}

TEST(MCPPortTest, AnEmptyRangeHoldsNoPort) {
    Ports ports({47600});
    EXPECT_EQ(ports.search(47600, 0), std::nullopt);
    EXPECT_EQ(ports.search(47600, -1), std::nullopt);
    EXPECT_THAT(ports.asked, IsEmpty());
}

TEST(MCPPortTest, AsksOnlyAboutNumbersThatArePorts) {
    Ports high({});
    EXPECT_EQ(high.search(65534, std::numeric_limits<int>::max()), std::nullopt);
    EXPECT_THAT(high.asked, ElementsAre(65534, 65535));
    Ports low({});
    EXPECT_EQ(low.search(-2, 4), std::nullopt);
    EXPECT_THAT(low.asked, ElementsAre(0, 1));
}

} // namespace
} // namespace orvane
