// The status item in trays of both kinds, and on a desktop that has none.
#include "Orvane/StatusItem.h"
#include "OrvanePlatform/freedesktop/DesktopWords.h"
#include "OrvanePlatform/x11/TrayHost.h"
#include "tests/desktop/GuiFixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QWindow>

namespace orvane::test {

namespace {

constexpr QRgb red = 0xffff3b30;
constexpr int processDeadlineMs = 10000;
// The tray is looked for every three seconds.
constexpr int trayDeadlineMs = 15000;

/// A program that runs until this object goes.
class Running {
public:
    Running(const QString& program, const QStringList& arguments) {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(program, arguments);
        if (!m_process.waitForStarted(processDeadlineMs))
            throw std::runtime_error(program.toStdString() + " did not start");
    }
    ~Running() {
        m_process.terminate();
        m_process.waitForFinished(processDeadlineMs);
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    QByteArray readLine() {
        QByteArray line;
        // The application has to go on meanwhile: it may be what the program is waiting for.
        eventuallyInLoop([&] {
            line = m_process.readLine();
            return !line.isEmpty();
        });
        return line;
    }

    QStringList ask(const QString& command) {
        m_process.write(command.toUtf8() + '\n');
        QStringList answer;
        const QJsonArray values = QJsonDocument::fromJson(readLine()).array();
        for (const auto& value : values)
            answer << value.toString();
        return answer;
    }

private:
    QProcess m_process;
};

/// A tray that embeds the windows of its icons.
std::unique_ptr<Running> embeddingTray() {
    return std::make_unique<Running>(u"trayer"_s, QStringList{u"--edge"_s, u"bottom"_s, u"--align"_s,
                                                              u"left"_s, u"--widthtype"_s, u"request"_s,
                                                              u"--heighttype"_s, u"pixel"_s, u"--height"_s,
                                                              u"24"_s, u"--tint"_s, u"0xffffff"_s});
}

/// A tray that is told of its icons over D-Bus.
std::unique_ptr<Running> busTray(const QStringList& arguments = {}) {
    auto host = std::make_unique<Running>(QStringLiteral(ORVANE_TRAY_HOST), arguments);
    if (host->readLine() != "ready\n")
        throw std::runtime_error("the tray on D-Bus did not come up");
    return host;
}

struct Request {
    StatusAction action;
    std::optional<QString> payload;

    bool operator==(const Request&) const = default;
};

class StatusItems : public GuiFixture {
protected:
    explicit StatusItems(const QStringList& options = {u"--size"_s, u"1280x800"_s})
        : GuiFixture(options) {}

    void start() {
        item =
            std::make_unique<StatusItem>([this] { return state; },
                                         [this](StatusAction action, const std::optional<QString>& payload) {
                                             requests.push_back({action, payload});
                                         },
                                         [this] { return x11::hasTrayHost(session); }, surfaces, words);
    }

    testing::AssertionResult comesIntoTray() {
        if (eventuallyInLoop([&] { return item->isInTray() && !item->pinButton(); }, trayDeadlineMs))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "the icon is not in the tray";
    }

    testing::AssertionResult comesOntoButton() {
        if (eventuallyInLoop([&] { return !item->isInTray() && item->pinButton(); }, trayDeadlineMs))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "there is no pin button";
    }

    /// Where the embedded icon is; a tray takes it up a moment after it is offered, and moves it once more.
    QRect embeddedIcon() {
        QRect icon;
        eventuallyInLoop([&] {
            icon = item->trayIcon()->geometry();
            return icon.isValid() && icon.bottom() >= 800 - 24;
        });
        return icon;
    }

    QStringList rows() const {
        QStringList titles;
        for (const QAction* action : item->menu().actions())
            titles << (action->isSeparator() ? u"---"_s : action->text());
        return titles;
    }

    QPoint rowPlace(const QString& title) const {
        for (QAction* action : item->menu().actions()) {
            if (action->text() == title)
                return item->menu().mapToGlobal(item->menu().actionGeometry(action).center());
        }
        throw std::runtime_error("no such row");
    }

    /// A window that is about to come up is visible to its own program before a click can hit it.
    static bool canBeClicked(const QWidget& widget) {
        return widget.isVisible() && widget.windowHandle() && widget.windowHandle()->isExposed();
    }

    bool comesToBeOpen(bool isOpen = true) {
        return eventuallyInLoop(
            [&] { return isOpen ? canBeClicked(item->menu()) : !item->menu().isVisible(); });
    }

    /// The middle of the pin button, once that can be clicked.
    QPoint buttonPlace() {
        if (!eventuallyInLoop([&] { return item->pinButton() && canBeClicked(*item->pinButton()); }))
            throw std::runtime_error("there is no pin button");
        return buttonOnScreen().center();
    }

    /// Where the X server has the pin button; Qt can be mistaken about windows that were put into a frame.
    QRect buttonOnScreen() {
        const auto connection = session.connection();
        const auto corner = connection->reply<xcb_translate_coordinates_reply>(xcb_translate_coordinates(
            connection->raw(), static_cast<xcb_window_t>(item->pinButton()->winId()), connection->root(), 0,
            0));
        return {corner->dst_x, corner->dst_y, PinButton::side, PinButton::side};
    }

    /// An icon is offered to a tray on D-Bus without waiting for it.
    static bool isOfferedTo(Running& tray) {
        return eventuallyInLoop([&] { return tray.ask(u"items"_s).size() == 1; });
    }

    /// Opens the menu by a click there, chooses a row by another, and gives what was asked for.
    std::optional<Request> choose(const QPoint& clickPlace, const QString& title, int button = 1) {
        clickAt(clickPlace, button);
        if (!comesToBeOpen())
            return std::nullopt;
        requests.clear();
        clickAt(rowPlace(title));
        eventuallyInLoop([&] { return !requests.empty() && !item->menu().isVisible(); });
        return requests.size() == 1 ? std::optional(requests.front()) : std::nullopt;
    }

    StatusMenuState state;
    std::vector<Request> requests;
    PlatformWords words = freedesktop::desktopWords();
    std::unique_ptr<StatusItem> item;
};

class StatusItemsOnTwoMonitors : public StatusItems {
protected:
    StatusItemsOnTwoMonitors()
        : StatusItems({u"--monitors"_s, u"A:800x600+640+0,B:640x480+0+100"_s}) {}
};

class StatusItemsUncomposited : public StatusItems {
protected:
    StatusItemsUncomposited()
        : StatusItems({u"--size"_s, u"1280x800"_s, u"--no-compositor"_s}) {}
};

} // namespace

// ---- a tray that embeds windows

TEST_F(StatusItems, MenuOpensByEitherButtonOnTheEmbeddedIcon) {
    const auto tray = embeddingTray();
    start();
    ASSERT_TRUE(comesIntoTray());
    const QRect icon = embeddedIcon();
    ASSERT_TRUE(icon.isValid());
    EXPECT_EQ(choose(icon.center(), u"Screenshot History (Super Ctrl H)"_s),
              (Request{StatusAction::toggleHistory, std::nullopt}));
    EXPECT_EQ(choose(icon.center(), u"Quit Orvane"_s, 3), (Request{StatusAction::quit, std::nullopt}));
}

TEST_F(StatusItems, MenuIsRebuiltEachTimeItOpens) {
    const auto tray = embeddingTray();
    start();
    ASSERT_TRUE(comesIntoTray());
    const QRect icon = embeddedIcon();
    ASSERT_TRUE(icon.isValid());
    clickAt(icon.center());
    ASSERT_TRUE(comesToBeOpen());
    EXPECT_EQ(rows().front(), u"Record Screen (Super Ctrl R)"_s);
    EXPECT_FALSE(rows().contains(u"Clear Markers"_s));
    runCommand(u"xdotool"_s, {u"key"_s, u"Escape"_s});
    ASSERT_TRUE(comesToBeOpen(false));

    // Nobody tells the item.
    state.markerCount = 3;
    EXPECT_EQ(choose(icon.center(), u"Clear Markers"_s), (Request{StatusAction::clearMarkers, std::nullopt}));
    EXPECT_TRUE(rows().contains(u"3 marker(s) active"_s));
    state.markerCount = 0;
    clickAt(icon.center());
    ASSERT_TRUE(comesToBeOpen());
    EXPECT_FALSE(rows().contains(u"Clear Markers"_s));
}

TEST_F(StatusItems, EmbeddedIconTellsOfARecording) {
    const auto tray = embeddingTray();
    start();
    ASSERT_TRUE(comesIntoTray());
    const QRect icon = embeddedIcon();
    ASSERT_TRUE(icon.isValid());
    const auto redPixels = [&] {
        const QImage picture = screen().copy(icon);
        int count = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                count += colorDistance(picture.pixel(x, y), red) < 30 ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(item->trayIcon()->toolTip(), u"Orvane"_s);
    EXPECT_EQ(redPixels(), 0);
    state.isRecording = true;
    item->update();
    EXPECT_TRUE(eventuallyInLoop([&] { return redPixels() > 60; })) << redPixels();
    EXPECT_EQ(item->trayIcon()->toolTip(), u"Orvane (Recording)"_s);
    state.isRecording = false;
    item->update();
    EXPECT_TRUE(eventuallyInLoop([&] { return redPixels() == 0; })) << redPixels();
}

TEST_F(StatusItems, WhereverTheItemMovesDuringARecordingItTellsOfIt) {
    state.isRecording = true;
    auto tray = embeddingTray();
    start();
    ASSERT_TRUE(comesIntoTray());
    const QRect icon = embeddedIcon();
    ASSERT_TRUE(icon.isValid());
    EXPECT_TRUE(comesToShow(QRectF(icon).center().toPoint(), red, 30));
    tray.reset();
    ASSERT_TRUE(comesOntoButton());
    EXPECT_TRUE(comesToShow(buttonPlace(), red, 10));
    EXPECT_EQ(item->pinButton()->accessibleName(), u"Orvane (Recording)"_s);
}

// ---- the menu itself

TEST_F(StatusItems, RowsDoNotMoveUnderTheMouse) {
    start();
    clickAt(buttonPlace());
    ASSERT_TRUE(comesToBeOpen());
    const QStringList before = rows();
    state.markerCount = 2;
    item->update();
    EXPECT_EQ(rows(), before);
    runCommand(u"xdotool"_s, {u"key"_s, u"Escape"_s});
    EXPECT_TRUE(eventuallyInLoop([&] { return rows().contains(u"2 marker(s) active"_s); }));
}

TEST_F(StatusItems, KeysOfTheMenuWorkWhileItIsOpen) {
    start();
    clickAt(buttonPlace());
    ASSERT_TRUE(comesToBeOpen());
    runCommand(u"xdotool"_s, {u"key"_s, u"ctrl+comma"_s});
    EXPECT_TRUE(eventuallyInLoop([&] { return !requests.empty(); }));
    EXPECT_EQ(requests, (std::vector<Request>{{StatusAction::openSettings, std::nullopt}}));
    EXPECT_TRUE(comesToBeOpen(false));
    clickAt(buttonPlace());
    ASSERT_TRUE(comesToBeOpen());
    runCommand(u"xdotool"_s, {u"key"_s, u"ctrl+q"_s});
    EXPECT_TRUE(eventuallyInLoop([&] { return requests.size() == 2; }));
    EXPECT_EQ(requests.back(), (Request{StatusAction::quit, std::nullopt}));
}

TEST_F(StatusItems, ADisabledRowAsksForNothing) {
    state.unavailable = {StatusAction::openSettings};
    start();
    const QPoint button = buttonPlace();
    clickAt(button);
    ASSERT_TRUE(comesToBeOpen());
    clickAt(rowPlace(u"Settings..."_s));
    runCommand(u"xdotool"_s, {u"key"_s, u"ctrl+comma"_s});
    runCommand(u"xdotool"_s, {u"key"_s, u"Escape"_s});
    ASSERT_TRUE(comesToBeOpen(false));
    EXPECT_TRUE(requests.empty());
}

TEST_F(StatusItems, TitlesAreShownAsTheyAre) {
    state.isRecording = true;
    state.recordingAppName = u"Salt & Pepper"_s;
    start();
    EXPECT_EQ(rows().front(), u"Stop Recording Salt && Pepper (Super Ctrl R)"_s);
}

// ---- a tray on D-Bus

TEST_F(StatusItems, TrayOnTheBusGetsTheMenuAndTheClicks) {
    const auto tray = busTray();
    state.camera = {.isOn = true, .selectedId = u"cam-1"_s, .devices = {{u"cam-1"_s, u"Front"_s}}};
    state.unavailable = {StatusAction::openSettings};
    start();
    ASSERT_TRUE(comesIntoTray());
    ASSERT_TRUE(isOfferedTo(*tray));
    EXPECT_EQ(tray->ask(u"menu"_s),
              (QStringList{u"Record Screen (Super Ctrl R)"_s, u"Annotate Screen (Super Ctrl P)"_s,
                           u"Present / Draw (Super Ctrl D)"_s, u"Screenshot History (Super Ctrl H)"_s,
                           u"---"_s, u"Camera"_s, u"Camera > None"_s, u"---"_s, u"Camera > Front*"_s,
                           u"Mic"_s, u"Mic > None*"_s, u"---"_s, u"---"_s, u"(Settings...)"_s,
                           u"Replay Setup…"_s, u"---"_s, u"Quit Orvane"_s}));
    EXPECT_EQ(tray->ask(u"click Camera > Front"_s), QStringList{u"clicked"_s});
    ASSERT_TRUE(eventuallyInLoop([&] { return !requests.empty(); }));
    EXPECT_EQ(requests.front(), (Request{StatusAction::selectCameraDevice, u"cam-1"_s}));
    // The state has not changed, so the mark stays where it was.
    EXPECT_TRUE(tray->ask(u"menu"_s).contains(u"Camera > Front*"_s));
}

TEST_F(StatusItems, TrayOnTheBusIsNeverBehindTheState) {
    const auto tray = busTray();
    start();
    ASSERT_TRUE(comesIntoTray());
    ASSERT_TRUE(isOfferedTo(*tray));
    EXPECT_EQ(tray->ask(u"tooltip"_s), QStringList{u"Orvane"_s});
    state.isRecording = true;
    state.recordingAppName = u"Editor"_s;
    state.markerCount = 4;
    item->update();
    EXPECT_EQ(tray->ask(u"tooltip"_s), QStringList{u"Orvane (Recording)"_s});
    const QStringList shown = tray->ask(u"menu"_s);
    EXPECT_EQ(shown.value(0), u"Stop Recording Editor (Super Ctrl R)"_s);
    EXPECT_TRUE(shown.contains(u"(4 marker(s) active)"_s));
    EXPECT_EQ(tray->ask(u"click Clear Markers"_s), QStringList{u"clicked"_s});
    ASSERT_TRUE(eventuallyInLoop([&] { return !requests.empty(); }));
    EXPECT_EQ(requests.front(), (Request{StatusAction::clearMarkers, std::nullopt}));
    // Without a word to the item, as when the menu opens.
    state.markerCount = 0;
    EXPECT_FALSE(tray->ask(u"menu"_s).contains(u"Clear Markers"_s));
}

TEST_F(StatusItems, RowsThatStayTheSameKeepTheirIdentityOnTheBus) {
    const auto tray = busTray();
    start();
    ASSERT_TRUE(comesIntoTray());
    ASSERT_TRUE(isOfferedTo(*tray));
    ASSERT_TRUE(tray->ask(u"menu"_s).contains(u"Replay Setup…"_s));
    // The tray goes on with the rows that it has.
    item->update();
    EXPECT_EQ(tray->ask(u"click Replay Setup…"_s), QStringList{u"clicked"_s});
    EXPECT_TRUE(eventuallyInLoop([&] { return !requests.empty(); }));
    EXPECT_EQ(requests, (std::vector<Request>{{StatusAction::replaySetup, std::nullopt}}));
}

TEST_F(StatusItems, WhoTakesIconsAndShowsNoneIsNoTray) {
    const auto watcher = busTray({u"--without-host"_s});
    EXPECT_FALSE(x11::hasTrayHost(session));
}

TEST_F(StatusItems, TrayOnTheBusThatComesLateIsFound) {
    start();
    ASSERT_TRUE(comesOntoButton());
    auto tray = busTray();
    ASSERT_TRUE(comesIntoTray());
    EXPECT_TRUE(isOfferedTo(*tray));
    tray.reset();
    EXPECT_TRUE(comesOntoButton());
    tray = busTray();
    EXPECT_TRUE(comesIntoTray());
    EXPECT_TRUE(isOfferedTo(*tray));
    EXPECT_TRUE(tray->ask(u"menu"_s).contains(u"Quit Orvane"_s));
}

// ---- no tray

TEST_F(StatusItems, WithoutATrayAButtonOffersTheMenu) {
    start();
    EXPECT_FALSE(item->isInTray());
    buttonPlace();
    const QRect button = buttonOnScreen();
    EXPECT_EQ(button, QRect(1280 - 12 - 32, 40, 32, 32));
    ASSERT_TRUE(comesToShow(button.center() + QPoint(0, 12), 0xff2b2d31));
    EXPECT_TRUE(comesToShow(button.center() + QPoint(0, 4), white, 40));
    EXPECT_EQ(choose(button.center(), u"Annotate Screen (Super Ctrl P)"_s),
              (Request{StatusAction::toggleOverlay, std::nullopt}));
    // Below the button, and wholly on the screen.
    EXPECT_EQ(item->menu().geometry().top(), button.bottom() + 1);
    EXPECT_LE(item->menu().geometry().right(), 1279);
    EXPECT_GT(item->menu().geometry().right(), button.left());
    state.isRecording = true;
    item->update();
    EXPECT_TRUE(comesToShow(button.center(), red, 10));
    EXPECT_EQ(item->pinButton()->accessibleName(), u"Orvane (Recording)"_s);
}

TEST_F(StatusItems, ButtonTakesNoFocusAndIsInNoTaskList) {
    const TestWindow window;
    ASSERT_TRUE(eventuallyInLoop([&] { return activeWindow() == window.id(); }));
    start();
    ASSERT_TRUE(comesToShow(buttonPlace() + QPoint(0, 12), 0xff2b2d31));
    EXPECT_EQ(activeWindow(), window.id());
    ASSERT_TRUE(choose(buttonPlace(), u"Replay Setup…"_s));
    EXPECT_EQ(activeWindow(), window.id());
    const QByteArray states =
        runCommand(u"xprop"_s, {u"-id"_s, QString::number(item->pinButton()->winId()), u"_NET_WM_STATE"_s});
    EXPECT_TRUE(states.contains("_NET_WM_STATE_ABOVE")) << states.constData();
    // Panels are in no task list.
    const QByteArray types = runCommand(
        u"xprop"_s, {u"-id"_s, QString::number(item->pinButton()->winId()), u"_NET_WM_WINDOW_TYPE"_s});
    EXPECT_TRUE(types.contains("= _NET_WM_WINDOW_TYPE_DOCK")) << types.constData();
    EXPECT_EQ(discovery.listWindows().size(), 1U);
}

TEST_F(StatusItems, ButtonStaysAboveOtherWindows) {
    start();
    const QPoint place = buttonPlace() + QPoint(0, 12);
    ASSERT_TRUE(comesToShow(place, 0xff2b2d31));
    const auto window = colorWindow(u"600x400+660+10"_s, u"white"_s);
    ASSERT_TRUE(comesToShow({700, 200}, white));
    EXPECT_TRUE(comesToShow(place, 0xff2b2d31));
}

TEST_F(StatusItems, ButtonIsDraggedAsideAndStaysThere) {
    start();
    const QPoint from = buttonPlace();
    ASSERT_TRUE(comesToShow(from + QPoint(0, 12), 0xff2b2d31));
    moveMouse(from);
    runCommand(u"xdotool"_s, {u"mousedown"_s, u"1"_s});
    moveMouse(from - QPoint(50, -20));
    moveMouse(from - QPoint(300, -100));
    runCommand(u"xdotool"_s, {u"mouseup"_s, u"1"_s});
    const QPoint to = from - QPoint(300, -100);
    EXPECT_TRUE(eventuallyInLoop([&] { return buttonOnScreen().center() == to; }));
    EXPECT_TRUE(comesToShow(to + QPoint(0, 12), 0xff2b2d31));
    EXPECT_FALSE(item->menu().isVisible());
    EXPECT_TRUE(choose(to, u"Quit Orvane"_s));
}

TEST_F(StatusItems, ButtonThatIsHeldBackIsNotOnTheScreen) {
    const auto window = colorWindow(u"600x400+660+10"_s, u"white"_s);
    start();
    const QPoint from = buttonPlace();
    ASSERT_TRUE(comesToShow(from + QPoint(0, 12), 0xff2b2d31));
    moveMouse(from);
    runCommand(u"xdotool"_s, {u"mousedown"_s, u"1"_s});
    moveMouse(from - QPoint(50, -20));
    moveMouse(from - QPoint(300, -100));
    runCommand(u"xdotool"_s, {u"mouseup"_s, u"1"_s});
    const QPoint place = from - QPoint(300, -100) + QPoint(0, 12);
    ASSERT_TRUE(comesToShow(place, 0xff2b2d31));
    item->setButtonHeldBack(true);
    EXPECT_TRUE(comesToShow(place, white));
    item->update();
    EXPECT_FALSE(item->pinButton()->isVisible());
    item->setButtonHeldBack(false);
    EXPECT_TRUE(comesToShow(place, 0xff2b2d31));
    EXPECT_TRUE(choose(place, u"Quit Orvane"_s));
}

TEST_F(StatusItems, ButtonThatATrayLeavesToIsHeldBackToo) {
    auto tray = embeddingTray();
    start();
    ASSERT_TRUE(comesIntoTray());
    item->setButtonHeldBack(true);
    EXPECT_TRUE(item->isInTray());
    tray.reset();
    ASSERT_TRUE(comesOntoButton());
    EXPECT_FALSE(item->pinButton()->isVisible());
    item->setButtonHeldBack(false);
    EXPECT_TRUE(item->pinButton()->isVisible());
}

TEST_F(StatusItems, ButtonGivesWayToATrayAndComesBack) {
    start();
    ASSERT_TRUE(comesOntoButton());
    auto tray = embeddingTray();
    ASSERT_TRUE(comesIntoTray());
    const QRect icon = embeddedIcon();
    ASSERT_TRUE(icon.isValid());
    EXPECT_EQ(choose(icon.center(), u"Quit Orvane"_s), (Request{StatusAction::quit, std::nullopt}));
    tray.reset();
    ASSERT_TRUE(comesOntoButton());
    tray = embeddingTray();
    ASSERT_TRUE(comesIntoTray());
    EXPECT_TRUE(embeddedIcon().isValid());
}

TEST_F(StatusItemsOnTwoMonitors, ButtonIsOnThePrimaryOne) {
    start();
    buttonPlace();
    EXPECT_EQ(buttonOnScreen(), QRect(640 + 800 - 12 - 32, 40, 32, 32));
    EXPECT_TRUE(comesToShow(buttonPlace() + QPoint(0, 12), 0xff2b2d31));
}

TEST_F(StatusItemsUncomposited, ButtonHasRoundCornersAllTheSame) {
    runCommand(u"xsetroot"_s, {u"-solid"_s, u"white"_s});
    start();
    buttonPlace();
    const QRect button = buttonOnScreen();
    ASSERT_TRUE(comesToShow(button.center() + QPoint(0, 12), 0xff2b2d31));
    EXPECT_TRUE(isColor(screen(), button.topLeft(), white));
}

} // namespace orvane::test
