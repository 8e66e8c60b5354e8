// Which windows an agent is told of, in which order, and raising them.
#include "tests/desktop/DesktopFixture.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

namespace orvane::test {

namespace {

class WindowList : public DesktopFixture {
protected:
    std::vector<qint64> zOrder() {
        std::vector<qint64> ids;
        for (const WindowInfo& info : discovery.listWindowsByZOrder())
            ids.push_back(info.windowId);
        return ids;
    }

    bool isOnScreen(qint64 windowId) {
        const std::vector<qint64> ids = zOrder();
        return std::find(ids.begin(), ids.end(), windowId) != ids.end();
    }

    /// What the full list has of an application.
    std::vector<WindowInfo> pickedFromAll(const QString& appName) {
        std::vector<WindowInfo> windows = discovery.listWindows();
        std::erase_if(windows, [&appName](const WindowInfo& window) {
            return !window.appName.toLower().contains(appName.toLower());
        });
        return windows;
    }

    /// How many requests the X server gets for something.
    int requestsOf(const std::function<void()>& action) {
        xcb_connection_t* connection = session.connection()->raw();
        const auto count = [connection] {
            const auto cookie = xcb_get_input_focus(connection);
            xcb_discard_reply(connection, cookie.sequence);
            return cookie.sequence;
        };
        const unsigned int before = count();
        action();
        return static_cast<int>(count() - before) - 1;
    }

    /// A window of this process with a class of its own, which the window manager knows when it returns.
    xcb_window_t openOwnWindow(const QByteArray& className, bool skipsTaskList) {
        const auto connection = session.connection();
        const xcb_window_t window = xcb_generate_id(connection->raw());
        xcb_create_window(connection->raw(), XCB_COPY_FROM_PARENT, window, connection->root(), 50, 50, 200,
                          150, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        const QByteArray windowClass = "instance" + QByteArray(1, '\0') + className + '\0';
        xcb_change_property(connection->raw(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                            XCB_ATOM_STRING, 8, static_cast<uint32_t>(windowClass.size()),
                            windowClass.constData());
        if (skipsTaskList) {
            xcb_change_property(connection->raw(), XCB_PROP_MODE_REPLACE, window,
                                connection->atoms().netWmState, XCB_ATOM_ATOM, 32, 1,
                                &connection->atoms().netWmStateSkipTaskbar);
        }
        xcb_map_window(connection->raw(), window);
        connection->sync();
        EXPECT_TRUE(eventually([&] { return isOnScreen(window); }));
        return window;
    }
};

} // namespace

TEST_F(WindowList, TellsEverythingOfAWindow) {
    const TestWindow window({u"--geometry"_s, u"300x200+100+100"_s, u"--title"_s, u"Übersicht — 日本"_s,
                             u"--class"_s, u"Planner"_s, u"--undecorated"_s});
    EXPECT_EQ(listed(window),
              (WindowInfo{u"Planner"_s, u"Übersicht — 日本"_s, qint32(window.pid()), window.id(), 100, 100,
                          300, 200, displays.list().front().id, u"0,0,1280,800"_s}));
}

TEST_F(WindowList, CountsDecorationsAsTheWindow) {
    const TestWindow window;
    const WindowInfo info = listed(window).value();
    EXPECT_GT(info.height, 205);
    EXPECT_GE(info.width, 300);
}

TEST_F(WindowList, KnowsTheProcessOfAWindowThatDoesNotTell) {
    const TestWindow window({u"--no-pid"_s});
    EXPECT_EQ(listed(window)->pid, window.pid());
}

TEST_F(WindowList, ReadsAClassInUtf8) {
    const TestWindow window({u"--class"_s, u"Größe 日本"_s});
    EXPECT_EQ(listed(window)->appName, u"Größe 日本");
    EXPECT_TRUE(discovery.activate(u"日本"_s).success);
}

TEST_F(WindowList, TakesNoControlCharactersFromAWindow) {
    const TestWindow window(
        {u"--class"_s, u"\u001b[201~\nev\u202eil\u0085"_s, u"--title"_s, u"one\u2028two\u0007"_s});
    EXPECT_EQ(listed(window)->appName, u"[201~evil");
    EXPECT_EQ(listed(window)->windowTitle, u"onetwo");
}

TEST_F(WindowList, NamesApplicationsAfterTheirDesktopEntries) {
    const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + u"/applications"_s;
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile entry(folder + u"/org.example.planner.desktop"_s);
    ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
    entry.write("[Desktop Entry]\nType=Application\nName=Holiday Planner\nStartupWMClass=Planner\nExec=x\n");
    entry.close();
    const TestWindow window({u"--class"_s, u"Planner"_s});
    freedesktop::DesktopEntries fresh(freedesktop::DesktopEntries::standardFolders(), u"C"_s);
    x11::X11WindowServer server(session, fresh);
    WindowDiscovery named(server, displays);
    ASSERT_EQ(named.listWindows().size(), 1U);
    EXPECT_EQ(named.listWindows().front().appName, u"Holiday Planner");
}

TEST_F(WindowList, LeavesOutWhatIsNoWindowOfAnApplication) {
    const TestWindow window;
    const TestWindow menu({u"--override-redirect"_s});
    const TestWindow dock({u"--type"_s, u"dock"_s});
    const TestWindow desktopWindow({u"--type"_s, u"desktop"_s});
    const std::vector<WindowInfo> windows = discovery.listWindows();
    ASSERT_EQ(windows.size(), 1U);
    EXPECT_EQ(windows.front().windowId, window.id());
    EXPECT_EQ(zOrder(), std::vector{window.id()});
}

TEST_F(WindowList, LeavesFloatingWindowsToTheZOrder) {
    const TestWindow window;
    const TestWindow palette({u"--type"_s, u"utility"_s});
    const TestWindow kept({u"--above-without-taskbar"_s});
    EXPECT_TRUE(listed(window));
    EXPECT_FALSE(listed(palette));
    EXPECT_FALSE(listed(kept));
    EXPECT_EQ(zOrder().size(), 3U);
}

TEST_F(WindowList, ListsDialogs) {
    const TestWindow dialog({u"--type"_s, u"dialog"_s});
    EXPECT_TRUE(listed(dialog));
}

TEST_F(WindowList, IsInTheOrderOfAppearanceAndOfTheStack) {
    const TestWindow first({u"--geometry"_s, u"300x200+10+40"_s, u"--class"_s, u"Zed"_s});
    const TestWindow second({u"--geometry"_s, u"300x200+50+80"_s, u"--class"_s, u"Abc"_s});
    EXPECT_EQ(discovery.listWindows()[0].appName, u"Zed");
    EXPECT_TRUE(eventually([&] { return zOrder() == std::vector{second.id(), first.id()}; }));
    discovery.activate(u"zed"_s);
    EXPECT_TRUE(eventually([&] { return zOrder() == std::vector{first.id(), second.id()}; }));
    EXPECT_EQ(discovery.listWindows()[0].appName, u"Zed");
}

TEST_F(WindowList, ListsAMinimisedWindowWithoutAnId) {
    TestWindow window({u"--class"_s, u"Planner"_s});
    window.command(u"iconify"_s);
    ASSERT_TRUE(eventually([&] { return zOrder().empty(); }));
    const std::vector<WindowInfo> windows = discovery.listWindows();
    ASSERT_EQ(windows.size(), 1U);
    EXPECT_EQ(windows.front().appName, u"Planner");
    EXPECT_EQ(windows.front().windowId, 0);
    EXPECT_TRUE(eventually([&] { return !discovery.bounds(window.id()); }));
}

TEST_F(WindowList, BringsAMinimisedWindowBack) {
    TestWindow window({u"--class"_s, u"Planner"_s});
    window.command(u"iconify"_s);
    ASSERT_TRUE(eventually([&] { return zOrder().empty(); }));
    EXPECT_EQ(discovery.activate(u"plan"_s).message, u"Activated Planner (1 window(s) raised)");
    EXPECT_TRUE(eventually([&] { return zOrder() == std::vector{window.id()}; }));
}

TEST_F(WindowList, ActivationShowsOnTheScreenAtOnce) {
    const auto red =
        colorWindow(u"300x200+100+100"_s, u"red"_s, {u"--class"_s, u"Red"_s, u"--undecorated"_s});
    const auto blue =
        colorWindow(u"300x200+150+150"_s, u"blue"_s, {u"--class"_s, u"Blue"_s, u"--undecorated"_s});
    ASSERT_TRUE(screenShows({300, 250}, 0xff0000ffU));
    EXPECT_TRUE(discovery.activate(u"red"_s).success);
    EXPECT_TRUE(screenShows({300, 250}, 0xffff0000U));
    EXPECT_EQ(runCommand(u"xdotool"_s, {u"getactivewindow"_s}).trimmed().toLongLong(), red->id());
}

TEST_F(WindowList, TellsBoundsOfAWindowThatMoved) {
    TestWindow window({u"--undecorated"_s});
    EXPECT_EQ(discovery.bounds(window.id()), QRectF(100, 100, 300, 200));
    window.command(u"move 333 222"_s);
    EXPECT_TRUE(eventually([&] { return discovery.bounds(window.id()) == QRectF(333, 222, 300, 200); }));
    EXPECT_EQ(discovery.bounds(12345), std::nullopt);
}

TEST_F(WindowList, FindsByNameWhatTheFullListHolds) {
    const TestWindow planner({u"--class"_s, u"Planner"_s, u"--title"_s, u"one"_s});
    const TestWindow silent({u"--class"_s, u"Silent"_s, u"--no-pid"_s});
    const TestWindow palette({u"--class"_s, u"Palette"_s, u"--type"_s, u"utility"_s});
    const TestWindow dock({u"--class"_s, u"Dock"_s, u"--type"_s, u"dock"_s});
    TestWindow minimised({u"--class"_s, u"Plain"_s});
    ASSERT_TRUE(eventually([&] { return isOnScreen(minimised.id()); }));
    minimised.command(u"iconify"_s);
    ASSERT_TRUE(eventually([&] { return !isOnScreen(minimised.id()); }));
    // The window manager lets a frame that it puts away shrink for a moment.
    ASSERT_TRUE(eventually([&] {
        const std::vector<WindowInfo> before = discovery.listWindows();
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        return discovery.listWindows() == before;
    }));
    for (const auto& [appName, count] : std::vector<std::pair<QString, size_t>>{{u"PLANNER"_s, 1},
                                                                                {u"pla"_s, 2},
                                                                                {u"silent"_s, 1},
                                                                                {u"palette"_s, 0},
                                                                                {u"dock"_s, 0},
                                                                                {u""_s, 3}}) {
        const std::vector<WindowInfo> found = discovery.findWindows(appName);
        EXPECT_EQ(found, pickedFromAll(appName)) << appName.toStdString();
        EXPECT_EQ(found.size(), count) << appName.toStdString();
    }
}

TEST_F(WindowList, FindsAnApplicationByTheWindowItIsNamedAfter) {
    // The first window in the task list names the application; the others are its windows under that name.
    const xcb_window_t aside = openOwnWindow("Aside", true);
    const xcb_window_t first = openOwnWindow("First", false);
    const xcb_window_t second = openOwnWindow("Second", false);
    const TestWindow other({u"--class"_s, u"Secondary"_s});
    ASSERT_TRUE(eventually([&] { return isOnScreen(other.id()); }));
    std::vector<qint64> ids;
    for (const WindowInfo& window : discovery.findWindows(u"first"_s))
        ids.push_back(window.windowId);
    EXPECT_THAT(ids, testing::UnorderedElementsAre(qint64{aside}, qint64{first}, qint64{second}));
    for (const QString& appName : {u"first"_s, u"aside"_s, u"second"_s, u""_s})
        EXPECT_EQ(discovery.findWindows(appName), pickedFromAll(appName)) << appName.toStdString();
    EXPECT_EQ(discovery.findWindows(u"second"_s).size(), 1U);
}

TEST_F(WindowList, AsksWindowsOfOtherApplicationsForTheirClassAlone) {
    const TestWindow planner({u"--class"_s, u"Planner"_s});
    ASSERT_TRUE(listed(planner));
    const auto find = [this] { EXPECT_EQ(discovery.findWindows(u"planner"_s).size(), 1U); };
    const int alone = requestsOf(find);
    std::vector<std::unique_ptr<TestWindow>> others;
    for (int i = 0; i < 4; ++i) {
        others.push_back(std::make_unique<TestWindow>(QStringList{u"--class"_s, u"Other"_s}));
        ASSERT_TRUE(eventually([&] { return isOnScreen(others.back()->id()); }));
    }
    EXPECT_EQ(requestsOf(find), alone + 4);
}

TEST_F(WindowList, SurvivesWindowsThatComeAndGo) {
    std::atomic<bool> stop = false;
    std::jthread churn([&stop] {
        while (!stop)
            TestWindow{};
    });
    for (int i = 0; i < 300; ++i) {
        for (const WindowInfo& info : discovery.listWindows())
            EXPECT_EQ(info.appName, u"TestWindow");
        for (const WindowInfo& info : discovery.findWindows(u"test"_s))
            EXPECT_EQ(info.appName, u"TestWindow");
    }
    stop = true;
}

TEST(WindowListWithoutManager, SaysWhatIsMissing) {
    const VirtualDesktop desktop({u"--no-window-manager"_s, u"--no-compositor"_s});
    x11::X11Session session;
    freedesktop::DesktopEntries entries({}, u"C"_s);
    x11::X11WindowServer server(session, entries);
    ASSERT_TRUE(server.unavailableReason());
    EXPECT_TRUE(server.unavailableReason()->contains(u"No window manager"_s));
    EXPECT_TRUE(server.snapshot({}).onScreen.empty());
}

} // namespace orvane::test
