// Activating windows that are on another virtual desktop, or minimised, or have fellows that are.
#include "OrvanePlatform/x11/ActiveWindow.h"
#include "tests/desktop/DesktopFixture.h"

#include <algorithm>

namespace orvane::test {

namespace {

/// A window of this process, so that several are of one application.
class WindowOfOneApplication {
public:
    explicit WindowOfOneApplication(const std::shared_ptr<x11::X11Connection>& connection)
        : m_connection(connection)
        , m_id(xcb_generate_id(connection->raw())) {
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(raw(), XCB_COPY_FROM_PARENT, m_id, connection->root(), 100, 100, 300, 200, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
        const QByteArray windowClass("own\0Own\0", 8);
        xcb_change_property(raw(), XCB_PROP_MODE_REPLACE, m_id, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, 8,
                            windowClass.constData());
        xcb_map_window(raw(), m_id);
        connection->sync();
    }
    ~WindowOfOneApplication() {
        xcb_destroy_window(raw(), m_id);
        xcb_flush(raw());
    }
    WindowOfOneApplication(const WindowOfOneApplication&) = delete;
    WindowOfOneApplication& operator=(const WindowOfOneApplication&) = delete;

    qint64 id() const { return m_id; }

    void minimise() {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = m_id;
        const auto reply =
            m_connection->reply<xcb_intern_atom_reply>(xcb_intern_atom(raw(), 0, 15, "WM_CHANGE_STATE"));
        event.type = reply->atom;
        // IconicState (ICCCM 2.0).
        event.data.data32[0] = 3;
        xcb_send_event(raw(), 0, m_connection->root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
        m_connection->sync();
    }

private:
    xcb_connection_t* raw() const { return m_connection->raw(); }

    std::shared_ptr<x11::X11Connection> m_connection;
    xcb_window_t m_id;
};

class OtherDesktops : public DesktopFixture {
protected:
    void SetUp() override {
        runCommand(u"xdotool"_s, {u"set_num_desktops"_s, u"4"_s});
        ASSERT_TRUE(eventually([] { return number({u"get_num_desktops"_s}) == 4; }));
    }

    static qint64 number(const QStringList& question) {
        return runCommand(u"xdotool"_s, question).trimmed().toLongLong();
    }

    static qint64 shownDesktop() { return number({u"get_desktop"_s}); }

    bool isActive(qint64 window) {
        return x11::activeWindow(*session.connection()) == static_cast<xcb_window_t>(window);
    }

    std::vector<qint64> onScreen() {
        std::vector<qint64> ids;
        for (const WindowInfo& info : discovery.listWindowsByZOrder())
            ids.push_back(info.windowId);
        return ids;
    }

    bool isOnScreen(qint64 window) {
        const auto ids = onScreen();
        return std::find(ids.begin(), ids.end(), window) != ids.end();
    }

    void moveTo(qint64 window, int desktopNumber) {
        const QString id = QString::number(window);
        runCommand(u"xdotool"_s, {u"set_desktop_for_window"_s, id, QString::number(desktopNumber)});
        ASSERT_TRUE(eventually([&] { return number({u"get_desktop_for_window"_s, id}) == desktopNumber; }));
        ASSERT_TRUE(eventually([&] { return isOnScreen(window) == (shownDesktop() == desktopNumber); }));
    }

    void awaitListed(qint64 window) {
        ASSERT_TRUE(eventually([&] { return isOnScreen(window); }));
    }
};

} // namespace

TEST_F(OtherDesktops, AreShownBeforeTheirWindowIsRaised) {
    const TestWindow window({u"--class"_s, u"Far"_s});
    const TestWindow here({u"--class"_s, u"Here"_s});
    for (const int desktopNumber : {3, 1, 2}) {
        moveTo(window.id(), desktopNumber);
        const ActivateResult result = discovery.activate(u"far"_s);
        EXPECT_EQ(result.message, u"Activated Far (1 window(s) raised)");
        EXPECT_EQ(shownDesktop(), desktopNumber);
        EXPECT_TRUE(isActive(window.id()));
        EXPECT_EQ(onScreen(), std::vector{window.id()});
    }
    EXPECT_TRUE(discovery.activate(u"here"_s).success);
    EXPECT_EQ(shownDesktop(), 0);
    EXPECT_TRUE(isActive(here.id()));
}

TEST_F(OtherDesktops, AreLeftAloneForAWindowThatIsOnAll) {
    const TestWindow window({u"--class"_s, u"Everywhere"_s});
    const TestWindow here({u"--class"_s, u"Here"_s});
    runCommand(u"xdotool"_s, {u"set_desktop_for_window"_s, QString::number(window.id()), u"-1"_s});
    runCommand(u"xdotool"_s, {u"set_desktop"_s, u"2"_s});
    ASSERT_TRUE(eventually([&] { return onScreen() == std::vector{window.id()}; }));
    EXPECT_TRUE(discovery.activate(u"everywhere"_s).success);
    EXPECT_EQ(shownDesktop(), 2);
    EXPECT_TRUE(eventually([&] { return isActive(window.id()); }));
}

TEST_F(OtherDesktops, GiveUpAMinimisedWindow) {
    TestWindow window({u"--class"_s, u"Far"_s});
    moveTo(window.id(), 3);
    window.command(u"iconify"_s);
    EXPECT_TRUE(discovery.activate(u"far"_s).success);
    EXPECT_EQ(shownDesktop(), 3);
    EXPECT_TRUE(eventually([&] { return isActive(window.id()) && onScreen() == std::vector{window.id()}; }));
}

TEST_F(OtherDesktops, AreLeftAloneWhereTheApplicationHasAWindowHere) {
    const auto connection = session.connection();
    const WindowOfOneApplication far(connection);
    awaitListed(far.id());
    WindowOfOneApplication minimised(connection);
    awaitListed(minimised.id());
    const WindowOfOneApplication here(connection);
    awaitListed(here.id());
    const TestWindow other({u"--class"_s, u"Other"_s});
    moveTo(far.id(), 2);
    minimised.minimise();
    ASSERT_TRUE(eventually([&] { return onScreen() == std::vector{other.id(), here.id()}; }));

    EXPECT_EQ(discovery.activate(u"own"_s).message, u"Activated Own (3 window(s) raised)");
    EXPECT_EQ(shownDesktop(), 0);
    EXPECT_TRUE(isActive(here.id()));
    EXPECT_EQ(onScreen(), (std::vector{here.id(), other.id()}));
}

TEST_F(OtherDesktops, AreShownForTheWindowThatIsAskedForWhateverItsApplicationHasHere) {
    const auto connection = session.connection();
    const WindowOfOneApplication far(connection);
    awaitListed(far.id());
    WindowOfOneApplication minimised(connection);
    awaitListed(minimised.id());
    const WindowOfOneApplication here(connection);
    awaitListed(here.id());
    moveTo(far.id(), 2);
    minimised.minimise();
    ASSERT_TRUE(eventually([&] { return onScreen() == std::vector{here.id()}; }));
    ASSERT_TRUE(discovery.activate(u"own"_s).success);
    ASSERT_TRUE(isActive(here.id()));

    const auto own = [this] { return windowServer.snapshot({}).applications.front(); };
    windowServer.activate(own(), {far.id()});
    EXPECT_EQ(shownDesktop(), 2);
    EXPECT_TRUE(isActive(far.id()));
    windowServer.activate(own(), {minimised.id()});
    EXPECT_EQ(shownDesktop(), 0);
    EXPECT_TRUE(isActive(minimised.id()));
    EXPECT_TRUE(eventually([&] { return isOnScreen(minimised.id()); }));
    windowServer.activate(own(), {here.id()});
    EXPECT_TRUE(isActive(here.id()));
}

} // namespace orvane::test
