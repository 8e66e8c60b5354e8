// What windows are and what becomes of them where a window manager does no more than it must: one that a test
// plays itself, so that each thing that one may say of a window can be said by itself.
#include "OrvanePlatform/x11/ActiveWindow.h"
#include "tests/desktop/DesktopFixture.h"

#include <algorithm>
#include <map>
#include <vector>

namespace orvane::test {

namespace {

using Numbers = std::vector<uint32_t>;

constexpr QRect usualPlace(100, 100, 300, 200);
constexpr uint32_t iconicState = 3;

class OtherManagers : public DesktopFixture {
protected:
    OtherManagers()
        : DesktopFixture({u"--size"_s, u"1280x800"_s, u"--no-window-manager"_s, u"--no-compositor"_s}) {}

    const x11::Atoms& atoms() const { return m_connection->atoms(); }
    xcb_window_t root() const { return m_connection->root(); }

    xcb_window_t madeIn(xcb_window_t parent, const QRect& place, uint16_t border = 0) {
        const xcb_window_t window = xcb_generate_id(raw());
        xcb_create_window(raw(), XCB_COPY_FROM_PARENT, window, parent, static_cast<int16_t>(place.x()),
                          static_cast<int16_t>(place.y()), static_cast<uint16_t>(place.width()),
                          static_cast<uint16_t>(place.height()), border, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        return window;
    }

    xcb_window_t shownIn(xcb_window_t parent, const QRect& place, uint16_t border = 0) {
        const xcb_window_t window = madeIn(parent, place, border);
        xcb_map_window(raw(), window);
        return window;
    }

    xcb_window_t shown() { return shownIn(root(), usualPlace); }

    void say(xcb_window_t window, xcb_atom_t property, const Numbers& numbers) {
        xcb_change_property(raw(), XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_CARDINAL, 32,
                            static_cast<uint32_t>(numbers.size()), numbers.data());
    }

    void sayBytes(xcb_window_t window, xcb_atom_t property, const QByteArray& bytes) {
        xcb_change_property(raw(), XCB_PROP_MODE_REPLACE, window, property, XCB_ATOM_STRING, 8,
                            static_cast<uint32_t>(bytes.size()), bytes.constData());
    }

    void sayClass(xcb_window_t window, const QByteArray& name) {
        sayBytes(window, XCB_ATOM_WM_CLASS, "instance" + QByteArray(1, '\0') + name + '\0');
    }

    /// Manages these, the first one at the bottom.
    void manage(const Numbers& windows) {
        say(root(), atoms().netClientList, windows);
        say(root(), atoms().netClientListStacking, windows);
        m_connection->sync();
    }

    std::vector<qint64> onScreen() {
        std::vector<qint64> ids;
        for (const WindowInfo& window : discovery.listWindowsByZOrder())
            ids.push_back(window.windowId);
        return ids;
    }

    /// What a capture finds of these.
    std::vector<qint64> shareable(const std::vector<qint64>& asked) {
        std::vector<qint64> ids;
        for (const ShareableWindow& window : screenSource.listContent(asked, {}).windows)
            ids.push_back(window.windowId);
        return ids;
    }

    /// As the only application tells of it.
    ApplicationWindow told(xcb_window_t window) {
        const WindowSnapshot snapshot = windowServer.snapshot({});
        EXPECT_EQ(snapshot.applications.size(), 1U);
        for (const ApplicationWindow& own : snapshot.applications.at(0).windows) {
            if (own.handle == window)
                return own;
        }
        ADD_FAILURE() << "the window is not listed";
        return {};
    }

    xcb_connection_t* raw() const { return m_connection->raw(); }

private:
    std::shared_ptr<x11::X11Connection> m_connection = session.connection();
};

/// Takes what programs ask of the window manager.
class Requests {
public:
    Requests() {
        const uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection->raw(), m_connection->root(), XCB_CW_EVENT_MASK, &events);
        m_connection->sync();
    }

    /// In words, the numbers of windows as names.
    std::vector<std::string> taken(const std::map<xcb_window_t, std::string>& names) {
        m_connection->sync();
        std::vector<std::string> requests;
        while (const auto event = x11::Owned<xcb_generic_event_t>(xcb_poll_for_event(m_connection->raw()))) {
            const int type = event->response_type & 0x7f;
            if (type == XCB_CONFIGURE_REQUEST) {
                const auto& request = reinterpret_cast<const xcb_configure_request_event_t&>(*event);
                requests.push_back((request.stack_mode == XCB_STACK_MODE_ABOVE ? "raise " : "configure ") +
                                   names.at(request.window));
            } else if (type == XCB_CLIENT_MESSAGE) {
                const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
                const uint32_t* const numbers = message.data.data32;
                requests.push_back(
                    m_connection->atomName(message.type).toStdString() + " " + names.at(message.window) +
                    " " + std::to_string(numbers[0]) + " " + std::to_string(numbers[1]) + " " +
                    (names.contains(numbers[2]) ? names.at(numbers[2]) : std::to_string(numbers[2])));
            }
        }
        return requests;
    }

private:
    std::shared_ptr<x11::X11Connection> m_connection = x11::X11Connection::open();
};

} // namespace

// ---- what is on the screen

TEST_F(OtherManagers, EachWayToKeepAWindowOffTheScreenCounts) {
    say(root(), atoms().netCurrentDesktop, {2});
    const xcb_window_t here = shown();
    say(here, atoms().netWmDesktop, {2});
    say(here, atoms().wmState, {1, 0});
    const xcb_window_t everywhere = shown();
    say(everywhere, atoms().netWmDesktop, {x11::allDesktops});
    const xcb_window_t saysNothing = shown();
    const xcb_window_t elsewhere = shown();
    say(elsewhere, atoms().netWmDesktop, {0});
    const xcb_window_t hidden = shown();
    say(hidden, atoms().netWmState, {atoms().netWmStateAbove, atoms().netWmStateHidden});
    const xcb_window_t iconic = shown();
    say(iconic, atoms().wmState, {iconicState, 0});
    const xcb_window_t unmapped = madeIn(root(), usualPlace);
    manage({here, hidden, everywhere, iconic, elsewhere, saysNothing, unmapped});

    EXPECT_EQ(onScreen(), (std::vector<qint64>{saysNothing, everywhere, here}));
    EXPECT_EQ(shareable({here, hidden, everywhere, iconic, elsewhere, saysNothing, unmapped}),
              (std::vector<qint64>{here, everywhere, saysNothing}));
    EXPECT_EQ(discovery.bounds(unmapped), std::nullopt);
}

TEST_F(OtherManagers, AWindowThatIsNotManagedIsNoneToCapture) {
    const xcb_window_t managed = shown();
    const xcb_window_t menu = shown();
    manage({managed});
    EXPECT_EQ(shareable({menu, managed}), std::vector<qint64>{managed});
}

// ---- what windows say

TEST_F(OtherManagers, FloatingIsWhatSaysSoFirstOrStaysAboveOutsideTheTaskList) {
    const auto dialog = session.connection()->reply<xcb_intern_atom_reply>(
        xcb_intern_atom(raw(), 0, 26, "_NET_WM_WINDOW_TYPE_DIALOG"));
    ASSERT_TRUE(dialog);
    const xcb_atom_t dialogType = dialog->atom;
    struct Case {
        Numbers types;
        Numbers states;
        bool floats;
    };
    const std::vector<Case> cases{
        {{}, {}, false},
        {{dialogType}, {}, false},
        {{atoms().netWmWindowTypeUtility}, {}, true},
        {{atoms().netWmWindowTypeToolbar}, {}, true},
        {{atoms().netWmWindowTypeSplash}, {}, true},
        {{atoms().netWmWindowTypeUtility, dialogType}, {}, true},
        {{dialogType, atoms().netWmWindowTypeUtility}, {}, false},
        {{}, {atoms().netWmStateAbove}, false},
        {{}, {atoms().netWmStateSkipTaskbar}, false},
        {{}, {atoms().netWmStateSkipTaskbar, atoms().netWmStateAbove}, true},
    };
    Numbers windows;
    for (const Case& one : cases) {
        const xcb_window_t window = shown();
        say(window, atoms().netWmWindowType, one.types);
        say(window, atoms().netWmState, one.states);
        windows.push_back(window);
    }
    manage(windows);
    for (size_t i = 0; i < cases.size(); ++i)
        EXPECT_EQ(told(windows[i]).floating, cases[i].floats) << i;
}

TEST_F(OtherManagers, TheOldTitleServesWhereThereIsNoNewOne) {
    const xcb_window_t old = shown();
    sayBytes(old, XCB_ATOM_WM_NAME,
             "Gr\xfc\xdf"
             "e");
    const xcb_window_t both = shown();
    sayBytes(both, XCB_ATOM_WM_NAME, "old");
    sayBytes(both, atoms().netWmName, "new");
    const xcb_window_t none = shown();
    manage({old, both, none});
    EXPECT_EQ(told(old).title, u"Grüße");
    EXPECT_EQ(told(both).title, u"new");
    EXPECT_EQ(told(none).title, u"");
}

TEST_F(OtherManagers, WhatHasTheWrongFormatIsNotSaid) {
    say(root(), atoms().netCurrentDesktop, {0});
    const xcb_window_t window = shown();
    sayBytes(window, atoms().netWmDesktop, QByteArray("\7\0\0\0", 4));
    sayBytes(window, XCB_ATOM_WM_NAME, "title");
    say(window, atoms().netWmName, {0x41414141});
    manage({window});
    EXPECT_EQ(onScreen(), std::vector<qint64>{window});
    EXPECT_EQ(told(window).title, u"title");
}

TEST_F(OtherManagers, AllWindowsOfAnApplicationAreToldUnderItsName) {
    const xcb_window_t first = shown();
    sayClass(first, "First");
    const xcb_window_t second = shown();
    sayClass(second, "Second");
    manage({first, second});
    std::vector<QString> names;
    for (const WindowInfo& window : discovery.listWindowsByZOrder())
        names.push_back(window.appName);
    EXPECT_EQ(names, (std::vector{u"First"_s, u"First"_s}));
}

// ---- where windows are

TEST_F(OtherManagers, AWindowIsAsLargeAsTheOutermostOfItsFrames) {
    for (const int frames : {0, 1, 2, 3, 7}) {
        const QRect outermost(90, 70, 320, 240);
        xcb_window_t window = root();
        for (int i = 0; i < frames; ++i)
            window = shownIn(window, i == 0 ? outermost : QRect(1, 1, 310, 230));
        window = shownIn(window, frames == 0 ? outermost : QRect(1, 1, 300, 200));
        manage({window});
        EXPECT_EQ(discovery.bounds(window), QRectF(outermost)) << frames;
    }
    xcb_window_t window = root();
    for (int i = 0; i < 100; ++i)
        window = shownIn(window, QRect(0, 0, 300, 200));
    manage({window});
    EXPECT_EQ(discovery.bounds(window), std::nullopt);
}

TEST_F(OtherManagers, ABorderBelongsToItsWindow) {
    const xcb_window_t window = shownIn(root(), usualPlace, 5);
    manage({window});
    EXPECT_EQ(discovery.bounds(window), QRectF(100, 100, 310, 210));
    EXPECT_EQ(capture.captureWindow(window, false).image.size(), QSize(310, 210));
}

TEST_F(OtherManagers, TheSidesOfAShadowAreLeftRightTopAndBottom) {
    const xcb_window_t window = shown();
    say(window, atoms().gtkFrameExtents, {10, 20, 30, 40});
    manage({window});
    EXPECT_EQ(discovery.bounds(window), QRectF(110, 130, 270, 130));
}

TEST_F(OtherManagers, DecorationsBeyondAnyMeasureAreNoMoreThanTheFrame) {
    const xcb_window_t frame = shownIn(root(), usualPlace);
    const xcb_window_t window = shownIn(frame, QRect(10, 20, 200, 100));
    say(window, atoms().netFrameExtents, {0xffffffffU, 0xffffffffU, 0xffffffffU, 0xffffffffU});
    manage({window});
    EXPECT_EQ(discovery.bounds(window), QRectF(usualPlace));
}

// ---- what the window manager is asked for

TEST_F(OtherManagers, AreAskedToBringTheFirstWindowForwardOverTheOthers) {
    say(root(), atoms().netCurrentDesktop, {1});
    const xcb_window_t front = shown();
    const xcb_window_t rear = shown();
    manage({rear, front});
    // Nobody waits for what has happened already.
    say(root(), atoms().netActiveWindow, {front});
    const RunningApplication application = windowServer.snapshot({}).applications.at(0);
    const std::map<xcb_window_t, std::string> names{{root(), "root"}, {front, "front"}, {rear, "rear"}};
    Requests requests;
    const std::vector<std::string> expected{"raise rear", "raise front",
                                            "_NET_ACTIVE_WINDOW front 2 0 front"};

    windowServer.activate(application, {front, rear});
    EXPECT_EQ(requests.taken(names), expected);
    for (const uint32_t staying : {1U, x11::allDesktops}) {
        say(front, atoms().netWmDesktop, {staying});
        windowServer.activate(application, {front, rear});
        EXPECT_EQ(requests.taken(names), expected) << staying;
    }
    say(front, atoms().netWmDesktop, {3});
    windowServer.activate(application, {front, rear});
    const std::vector<std::string> showing = requests.taken(names);
    ASSERT_EQ(showing.size(), 4U);
    EXPECT_EQ(showing.front(), "_NET_CURRENT_DESKTOP root 3 0 0");
    EXPECT_EQ(std::vector(showing.begin() + 1, showing.end()), expected);
}

} // namespace orvane::test
