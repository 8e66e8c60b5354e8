#include "OrvaneCore/capture/WindowDiscovery.h"
#include "tests/support/FakeDesktop.h"

#include <gtest/gtest.h>

#include <utility>

namespace orvane {

namespace {

using test::FakeDesktop;
using test::makeDisplay;

WindowEntry row(qint64 windowId, qint32 pid, const QRectF& bounds) {
    return {.windowId = windowId, .pid = pid, .ownerName = {}, .title = {}, .boundsPoints = bounds};
}

ApplicationWindow plainWindow(qint64 handle, const QRectF& bounds, const QString& title = {}) {
    ApplicationWindow window;
    window.handle = handle;
    window.boundsPoints = bounds;
    window.title = title;
    return window;
}

class WindowDiscoveryTest : public testing::Test {
protected:
    WindowDiscoveryTest() {
        desktop.displayList = {makeDisplay(11, {0, 0, 1000, 800}), makeDisplay(22, {1000, 0, 1000, 800})};
    }

    FakeDesktop desktop;
    WindowDiscovery discovery{desktop, desktop};
};

/// The pids of the applications and those of the rows on screen.
std::pair<std::vector<qint32>, std::vector<qint32>> pidsOf(const WindowSnapshot& desktop) {
    std::pair<std::vector<qint32>, std::vector<qint32>> pids;
    for (const RunningApplication& application : desktop.applications)
        pids.first.push_back(application.pid);
    for (const WindowEntry& row : desktop.onScreen)
        pids.second.push_back(row.pid);
    return pids;
}

} // namespace

TEST(OnlyWanted, LeavesApplicationsOfWantedNamesAndTheirRowsInOrder) {
    FakeDesktop desktop;
    desktop.addApplication(3, QStringLiteral("Zed"), 30, {0, 0, 10, 10});
    desktop.addApplication(1, QStringLiteral("Abc"), 10, {0, 0, 10, 10});
    desktop.addApplication(2, QStringLiteral("Zed"), 20, {0, 0, 10, 10});
    desktop.windows.applications.push_back({.pid = 4, .localizedName = std::nullopt, .windows = {}});
    // A row may name another owner than the application is called, and be of no application.
    desktop.windows.onScreen = {row(20, 2, {}), row(40, 4, {}), row(10, 1, {}), row(31, 3, {}),
                                row(50, 5, {})};
    const auto pids = [&desktop](const ApplicationFilter& isWanted) {
        return pidsOf(onlyWanted(desktop.windows, isWanted));
    };
    const std::vector<qint32> none;
    EXPECT_EQ(pids([](const QString& name) { return name == u"Zed"; }),
              std::pair(std::vector<qint32>{3, 2}, std::vector<qint32>{2, 3}));
    EXPECT_EQ(pids([](const QString&) { return true; }),
              std::pair(std::vector<qint32>{3, 1, 2}, std::vector<qint32>{2, 1, 3}));
    EXPECT_EQ(pids([](const QString&) { return false; }), std::pair(none, none));
}

TEST(MatchWindowId, TakesBoundsWithinTenPoints) {
    const std::vector<WindowEntry> rows{row(1, 5, {0, 0, 100, 100}), row(2, 5, {209.9, 50, 100, 100})};
    EXPECT_EQ(matchWindowId(rows, 5, {200, 50, 100, 100}), 2);
}

TEST(MatchWindowId, FallsToTheFirstOfTheProcessAtTenPoints) {
    const std::vector<WindowEntry> rows{row(1, 5, {0, 0, 100, 100}), row(2, 5, {210, 50, 100, 100})};
    EXPECT_EQ(matchWindowId(rows, 5, {200, 50, 100, 100}), 1);
    for (const QRectF& off : {QRectF(200, 40, 100, 100), QRectF(210, 50, 110, 100), QRectF(210, 50, 100, 90)})
        EXPECT_EQ(matchWindowId(rows, 5, off), 1);
}

TEST(MatchWindowId, IsZeroForAProcessWithoutWindows) {
    EXPECT_EQ(matchWindowId({row(1, 5, {0, 0, 100, 100})}, 6, {0, 0, 100, 100}), 0);
    EXPECT_EQ(matchWindowId({}, 6, {0, 0, 100, 100}), 0);
}

TEST(MatchWindowId, GivesTwoEqualWindowsOneId) {
    const std::vector<WindowEntry> rows{row(1, 5, {0, 0, 100, 100}), row(2, 5, {0, 0, 100, 100})};
    EXPECT_EQ(matchWindowId(rows, 5, {0, 0, 100, 100}), 1);
    EXPECT_EQ(matchWindowId(rows, 5, {1, 1, 100, 100}), 1);
}

TEST(MatchDisplay, TakesTheLargerOverlap) {
    const std::vector displays{makeDisplay(1, {0, 0, 100, 100}), makeDisplay(2, {100, 0, 100, 100})};
    EXPECT_EQ(matchDisplay(displays, {90, 0, 30, 10}), (DisplayMatch{2, QStringLiteral("100,0,100,100")}));
    EXPECT_EQ(matchDisplay(displays, {80, 0, 30, 10}), (DisplayMatch{1, QStringLiteral("0,0,100,100")}));
}

TEST(MatchDisplay, TakesTheEarlierOfAnExactHalf) {
    const std::vector displays{makeDisplay(2, {100, 0, 100, 100}), makeDisplay(1, {0, 0, 100, 100})};
    EXPECT_EQ(matchDisplay(displays, {80, 0, 40, 10}).displayId, 2U);
}

TEST(MatchDisplay, KnowsNoneForARectangleOffScreen) {
    const DisplayMatch none{0, QStringLiteral("unknown")};
    const std::vector displays{makeDisplay(1, {0, 0, 100, 100})};
    EXPECT_EQ(matchDisplay(displays, {500, 500, 10, 10}), none);
    EXPECT_EQ(matchDisplay(displays, {100, 0, 10, 10}), none);
    EXPECT_EQ(matchDisplay(displays, {10, 10, 0, 10}), none);
    EXPECT_EQ(matchDisplay({}, {0, 0, 10, 10}), none);
}

TEST(JoinedNames, AreSortedAndEachOnce) {
    EXPECT_EQ(joinedNames({QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("b")}), u"a, b");
    EXPECT_EQ(joinedNames({}), u"");
}

TEST_F(WindowDiscoveryTest, ListsWindowsInTheOrderOfApplications) {
    desktop.addApplication(2, QStringLiteral("Zed"), 20, {10.9, 20.9, 300.9, 200.9}, QStringLiteral("one"));
    desktop.addApplication(1, QStringLiteral("Abc"), 10, {1100, 20, 300, 200});
    const std::vector<WindowInfo> windows = discovery.listWindows();
    ASSERT_EQ(windows.size(), 2U);
    EXPECT_EQ(windows[0], (WindowInfo{QStringLiteral("Zed"), QStringLiteral("one"), 2, 20, 10, 20, 300, 200,
                                      11, QStringLiteral("0,0,1000,800")}));
    EXPECT_EQ(windows[1].appName, u"Abc");
    EXPECT_EQ(windows[1].windowTitle, u"");
    EXPECT_EQ(windows[1].displayId, 22U);
    EXPECT_EQ(desktop.snapshots, 1);
}

TEST_F(WindowDiscoveryTest, NamesAndTitlesHaveNoControlCharacters) {
    const QString evil = QStringLiteral("\u001b[201~\nEv\u202eil\u0085\u2029");
    desktop.addApplication(1, evil, 10, {0, 0, 300, 200});
    desktop.windows.applications[0].windows[0].title = evil;
    desktop.windows.onScreen = {row(10, 1, {0, 0, 300, 200})};
    desktop.windows.onScreen[0].ownerName = evil;
    desktop.windows.onScreen[0].title = evil;
    for (const auto& windows : {discovery.listWindows(), discovery.listWindowsByZOrder()}) {
        ASSERT_EQ(windows.size(), 1U);
        EXPECT_EQ(windows[0].appName, u"[201~Evil");
        EXPECT_EQ(windows[0].windowTitle, u"[201~Evil");
    }
    EXPECT_EQ(discovery.activate(QStringLiteral("evil")).message,
              u"Activated [201~Evil (1 window(s) raised)");
    EXPECT_EQ(discovery.activate(QStringLiteral("none")).message,
              u"App 'none' not found. Available: [201~Evil");
}

TEST_F(WindowDiscoveryTest, ANameOfControlCharactersIsNone) {
    desktop.addApplication(1, QStringLiteral("\n\u202e"), 10, {0, 0, 300, 200});
    desktop.windows.onScreen = {row(10, 1, {0, 0, 300, 200})};
    desktop.windows.onScreen[0].ownerName = QStringLiteral("\u001b");
    EXPECT_TRUE(discovery.listWindows().empty());
    EXPECT_EQ(discovery.listWindowsByZOrder().front().appName, u"Unknown");
}

TEST_F(WindowDiscoveryTest, LeavesOutWhatIsNoRealWindow) {
    desktop.addApplication(1, QStringLiteral("App"), 10, {0, 0, 300, 200});
    auto& windows = desktop.windows.applications[0].windows;
    windows.push_back(plainWindow(11, {0, 0, 50, 50}));
    windows.back().floating = true;
    windows.push_back(plainWindow(12, {0, 0, 50, 50}));
    windows.back().role = WindowRole::other;
    windows.push_back(plainWindow(13, {}));
    windows.back().boundsPoints.reset();
    desktop.windows.applications.push_back(
        {.pid = 3, .localizedName = std::nullopt, .windows = {plainWindow(14, {0, 0, 9, 9})}});
    EXPECT_EQ(discovery.listWindows().size(), 1U);
}

TEST_F(WindowDiscoveryTest, ListsAMinimisedWindowWithoutItsOwnId) {
    desktop.addApplication(1, QStringLiteral("App"), 10, {0, 0, 300, 200});
    desktop.windows.onScreen.clear();
    EXPECT_EQ(discovery.listWindows().front().windowId, 0);
    desktop.windows.onScreen.push_back(row(77, 1, {500, 500, 20, 20}));
    EXPECT_EQ(discovery.listWindows().front().windowId, 77);
}

TEST_F(WindowDiscoveryTest, FindsBySubstringWhateverTheCase) {
    desktop.addApplication(1, QStringLiteral("Google Chrome"), 10, {0, 0, 300, 200});
    desktop.addApplication(2, QStringLiteral("Terminal"), 20, {0, 0, 300, 200});
    EXPECT_EQ(discovery.findWindows(QStringLiteral("CHROM")).size(), 1U);
    EXPECT_EQ(discovery.findWindows(QStringLiteral("e")).size(), 2U);
    EXPECT_EQ(discovery.findWindows(QString()).size(), 2U);
    EXPECT_TRUE(discovery.findWindows(QStringLiteral("none")).empty());
}

TEST_F(WindowDiscoveryTest, FindsWhatTheFullListHoldsAndAsksForNoMore) {
    // Ids that fall back to another window of the process, two processes of a name, none, and one to clean.
    desktop.addApplication(1, QStringLiteral("Editor"), 10, {0, 0, 300, 200}, QStringLiteral("one"));
    desktop.addApplication(2, QStringLiteral("\u001bTerm\u202einal"), 20, {10, 10, 300, 200});
    desktop.addApplication(3, QStringLiteral("Text editor"), 30, {900, 0, 300, 200});
    desktop.addApplication(4, QStringLiteral("\n"), 40, {0, 0, 10, 10});
    auto& windows = desktop.windows.applications[0].windows;
    windows.push_back(plainWindow(11, {500, 500, 80, 80}, QStringLiteral("two")));
    windows.push_back(plainWindow(12, {500, 500, 80, 80}));
    windows.back().floating = true;
    desktop.windows.onScreen.insert(desktop.windows.onScreen.begin(), row(99, 9, {0, 0, 300, 200}));
    for (const char* query : {"editor", "EDIT", "text", "Terminal", "", "none", "\n"}) {
        const QString appName = QString::fromLatin1(query);
        std::vector<WindowInfo> expected = discovery.listWindows();
        std::erase_if(expected, [&appName](const WindowInfo& window) {
            return !window.appName.toLower().contains(appName.toLower());
        });
        desktop.snapshots = 0;
        desktop.partialSnapshots = 0;
        EXPECT_EQ(discovery.findWindows(appName), expected) << query;
        EXPECT_EQ(desktop.snapshots, 0);
        EXPECT_EQ(desktop.partialSnapshots, 1);
    }
    EXPECT_EQ(discovery.findWindows(QStringLiteral("edit")).size(), 3U);
    EXPECT_EQ(discovery.findWindows(QStringLiteral("terminal")).size(), 1U);
}

TEST_F(WindowDiscoveryTest, ListsByZOrderWithoutOurOwnAndTheTiny) {
    const auto add = [this](qint64 id, std::optional<QString> owner, const QSizeF& size) {
        desktop.windows.onScreen.push_back({.windowId = id,
                                            .pid = 1,
                                            .ownerName = std::move(owner),
                                            .title = std::nullopt,
                                            .boundsPoints = QRectF(QPointF(0, 0), size)});
    };
    add(1, QStringLiteral("orvane"), {50, 50});
    add(2, QStringLiteral("Orvane"), {50, 50});
    add(3, QStringLiteral("ORVANE"), {50, 50});
    add(4, std::nullopt, {50, 50});
    add(5, QStringLiteral("Thin"), {1, 50});
    add(6, QStringLiteral("Flat"), {50, 1});
    add(7, QStringLiteral("Small"), {2, 2});
    std::vector<qint64> ids;
    for (const WindowInfo& window : discovery.listWindowsByZOrder())
        ids.push_back(window.windowId);
    EXPECT_EQ(ids, (std::vector<qint64>{3, 4, 7}));
    EXPECT_EQ(discovery.listWindowsByZOrder()[1].appName, u"Unknown");
}

TEST_F(WindowDiscoveryTest, ActivatesTheFirstMatch) {
    desktop.addApplication(1, QStringLiteral("Editor One"), 10, {0, 0, 300, 200});
    desktop.addApplication(2, QStringLiteral("Editor Two"), 20, {0, 0, 300, 200});
    auto& windows = desktop.windows.applications[0].windows;
    windows.push_back(plainWindow(11, {0, 0, 50, 50}));
    windows.push_back(plainWindow(12, {0, 0, 50, 50}));
    windows.back().floating = true;
    const ActivateResult result = discovery.activate(QStringLiteral("EDITOR"));
    EXPECT_TRUE(result.success);
    EXPECT_EQ(result.message, u"Activated Editor One (2 window(s) raised)");
    ASSERT_EQ(desktop.activations.size(), 1U);
    EXPECT_EQ(desktop.activations[0].first, 1);
    EXPECT_EQ(desktop.activations[0].second, (std::vector<qint64>{10, 11}));
}

TEST_F(WindowDiscoveryTest, NamesWhatIsThereWhenNothingMatches) {
    desktop.addApplication(1, QStringLiteral("Zed"), 10, {0, 0, 300, 200});
    desktop.addApplication(2, QStringLiteral("Abc"), 20, {0, 0, 300, 200});
    desktop.addApplication(3, QStringLiteral("Zed"), 30, {0, 0, 300, 200});
    const ActivateResult result = discovery.activate(QStringLiteral("NoSuch"));
    EXPECT_FALSE(result.success);
    EXPECT_EQ(result.message, u"App 'NoSuch' not found. Available: Abc, Zed");
}

TEST_F(WindowDiscoveryTest, NeverThrows) {
    desktop.addApplication(1, QStringLiteral("App"), 10, {0, 0, 300, 200});
    desktop.failure = QStringLiteral("gone");
    EXPECT_TRUE(discovery.listWindows().empty());
    EXPECT_TRUE(discovery.listWindowsByZOrder().empty());
    EXPECT_TRUE(discovery.findWindows(QStringLiteral("App")).empty());
    EXPECT_EQ(discovery.bounds(10), std::nullopt);
    EXPECT_EQ(discovery.findDisplay({0, 0, 10, 10}).displayId, 0U);
    EXPECT_FALSE(discovery.activate(QStringLiteral("App")).success);
}

TEST_F(WindowDiscoveryTest, AsksForTheDisplaysOfWindowsOnly) {
    const auto search = [this] {
        discovery.listWindows();
        discovery.listWindowsByZOrder();
        discovery.findWindows(QStringLiteral("App"));
    };
    desktop.addApplication(1, QStringLiteral("App"), 10, {0, 0, 300, 200});
    search();
    EXPECT_EQ(desktop.displayLists, 3);
    // It might be the desktop's silence once more.
    desktop.failure = QStringLiteral("gone");
    search();
    EXPECT_EQ(desktop.displayLists, 3);
}

TEST_F(WindowDiscoveryTest, TellsTheBoundsOfOneWindow) {
    desktop.addApplication(1, QStringLiteral("App"), 10, {1, 2, 300, 200});
    EXPECT_EQ(discovery.bounds(10), QRectF(1, 2, 300, 200));
    EXPECT_EQ(discovery.bounds(11), std::nullopt);
}

} // namespace orvane
