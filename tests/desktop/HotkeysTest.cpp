// Hotkeys on a real X server, beside other programs.
#include "tests/desktop/HotkeysFixture.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <csignal>

namespace orvane::test {

TEST_F(Hotkeys, EachFiresOnceWhenItsKeyGoesUp) {
    const std::map<QString, Shortcut> defaults{
        {keyP, overlay}, {keyR, recording}, {keyH, history}, {keyD, draw}, {keyA, mode}};
    for (const auto& [key, shortcut] : defaults)
        add(shortcut);
    int number = 0;
    for (const auto& entry : defaults) {
        const QString& key = entry.first;
        const Shortcut& shortcut = entry.second;
        xdotool({u"keydown"_s, superKey, u"keydown"_s, controlKey, u"keydown"_s, key});
        QCoreApplication::processEvents();
        EXPECT_EQ(fired[shortcut.toJson()], 0);
        xdotool({u"keyup"_s, key});
        EXPECT_TRUE(soon([&] { return fired[shortcut.toJson()] == 1; })) << shortcut.toJson().toStdString();
        xdotool({u"keyup"_s, controlKey, u"keyup"_s, superKey});
        EXPECT_EQ(firings(shortcut), 1);
        // Nothing but this one and the sentinel.
        EXPECT_EQ(fired.size(), static_cast<std::size_t>(++number) + 1);
    }
}

TEST_F(Hotkeys, FiresAgainForEachPress) {
    add(overlay);
    for (int press = 1; press <= 3; ++press) {
        pressChord(keyP);
        EXPECT_EQ(firings(overlay), press);
    }
}

TEST_F(Hotkeys, FiresWhenTheModifiersGoUpFirst) {
    add(overlay);
    xdotool({u"keydown"_s, superKey, u"keydown"_s, controlKey, u"keydown"_s, keyP, u"keyup"_s, superKey,
             u"keyup"_s, controlKey});
    QCoreApplication::processEvents();
    EXPECT_EQ(fired[overlay.toJson()], 0);
    xdotool({u"keyup"_s, keyP});
    EXPECT_EQ(firings(overlay), 1);
}

TEST_F(Hotkeys, FiresWhateverTheLocks) {
    add(overlay);
    OtherClient other;
    xdotool({u"key"_s, numLockKey});
    ASSERT_EQ(other.locks(), XCB_MOD_MASK_2);
    pressChord(keyP);
    EXPECT_EQ(firings(overlay), 1);
    xdotool({u"key"_s, capsLockKey});
    ASSERT_EQ(other.locks(), XCB_MOD_MASK_2 | XCB_MOD_MASK_LOCK);
    pressChord(keyP);
    EXPECT_EQ(firings(overlay), 2);
    xdotool({u"key"_s, numLockKey});
    ASSERT_EQ(other.locks(), XCB_MOD_MASK_LOCK);
    pressChord(keyP);
    EXPECT_EQ(firings(overlay), 3);
}

TEST_F(Hotkeys, FiresOnceForAKeyThatRepeats) {
    runCommand(u"xset"_s, {u"r"_s, u"rate"_s, u"50"_s, u"50"_s});
    OtherClient other;
    ASSERT_TRUE(other.grab(keyX, 0));
    QElapsedTimer timer;
    timer.start();
    xdotool({u"keydown"_s, keyX});
    ASSERT_TRUE(soon([&] { return other.presses() >= 5; })) << "keys do not repeat here";
    const qint64 fiveRepeats = timer.elapsed();
    xdotool({u"keyup"_s, keyX});

    add(overlay);
    xdotool({u"keydown"_s, superKey, u"keydown"_s, controlKey, u"keydown"_s, keyP});
    timer.start();
    soon([&] { return timer.hasExpired(2 * fiveRepeats); });
    EXPECT_EQ(fired[overlay.toJson()], 0);
    xdotool({u"keyup"_s, keyP, u"keyup"_s, controlKey, u"keyup"_s, superKey});
    EXPECT_EQ(firings(overlay), 1);
}

TEST_F(Hotkeys, TakesNoOtherCombinationOfItsKey) {
    add(overlay);
    xdotool(press({keyP}));
    xdotool(press({superKey, keyP}));
    xdotool(press({controlKey, keyP}));
    xdotool(press({superKey, controlKey, shiftKey, keyP}));
    xdotool(press({superKey, controlKey, altKey, keyP}));
    xdotool(press({superKey, controlKey, keyQ}));
    EXPECT_EQ(firings(overlay), 0);
    // They are still others' to take.
    OtherClient other;
    EXPECT_TRUE(other.grab(keyP, superControl | XCB_MOD_MASK_SHIFT));
    EXPECT_TRUE(other.grab(keyP, 0));
}

TEST_F(Hotkeys, FiresBothOfTwoThatOverlap) {
    add(overlay);
    add(draw);
    xdotool({u"keydown"_s, superKey, u"keydown"_s, controlKey, u"keydown"_s, keyP, u"keydown"_s, keyD,
             u"keyup"_s, keyD, u"keyup"_s, keyP, u"keyup"_s, controlKey, u"keyup"_s, superKey});
    EXPECT_EQ(firings(overlay), 1);
    EXPECT_EQ(firings(draw), 1);
}

TEST_F(Hotkeys, ForgetsAKeyWhoseReleaseItCannotSee) {
    add(overlay);
    add(draw);
    // The keyboard is lent until P goes up, so what becomes of D stays unknown.
    xdotool({u"keydown"_s, superKey, u"keydown"_s, controlKey, u"keydown"_s, keyP, u"keydown"_s, keyD,
             u"keyup"_s, keyP, u"keyup"_s, keyD});
    xdotool({u"keydown"_s, keyP, u"keydown"_s, shiftKey, u"keydown"_s, keyD, u"keyup"_s, keyD, u"keyup"_s,
             shiftKey, u"keyup"_s, keyP, u"keyup"_s, controlKey, u"keyup"_s, superKey});
    EXPECT_EQ(firings(overlay), 2);
    EXPECT_EQ(firings(draw), 0);
}

TEST_F(Hotkeys, ReportsWhatAnotherProgramHoldsAndGoesOnWithTheRest) {
    OtherClient other;
    ASSERT_TRUE(other.grab(keyR, superControl));
    const auto id = add(recording, State::conflicting);
    EXPECT_TRUE(soon([&] { return states == std::vector{State::conflicting}; }));
    add(overlay);
    pressChord(keyP);
    pressChord(keyR);
    EXPECT_EQ(firings(overlay), 1);
    EXPECT_EQ(firings(recording), 0);
    EXPECT_EQ(other.presses(), 1);
    EXPECT_EQ(hotkeys->state(id), State::conflicting);
}

TEST_F(Hotkeys, SaysNothingOfOneBeforeItHasBeenAskedFor) {
    OtherClient other;
    ASSERT_TRUE(other.grab(keyR, superControl));
    // From here on the keyboard is known, and each one is asked for by itself.
    add(history);
    hotkeys->add(overlay, {.released = [] {}, .stateChanged = [](State) {}});
    std::vector<State> told;
    const auto id = hotkeys->add(
        recording, {.released = [] {}, .stateChanged = [&](State state) { told.push_back(state); }});
    EXPECT_TRUE(soon([&] { return hotkeys->state(id) == State::conflicting; }));
    EXPECT_TRUE(soon([&] { return !told.empty() && told.back() == State::conflicting; }));
    EXPECT_EQ(told, std::vector{State::conflicting});
}

TEST_F(Hotkeys, NoticesARefusalHoweverQuicklyItComes) {
    OtherClient other;
    ASSERT_TRUE(other.grab(keyR, superControl));
    for (int round = 0; round < 50; ++round) {
        hotkeys = std::make_unique<x11::X11Hotkeys>();
        const auto id = hotkeys->add(recording, {.released = [] {}, .stateChanged = [](State) {}});
        EXPECT_TRUE(soon([&] { return hotkeys->state(id) != State::pending; }));
        ASSERT_EQ(hotkeys->state(id), State::conflicting) << round;
    }
}

TEST_F(Hotkeys, HoldsNoPartOfAConflictingCombination) {
    OtherClient other;
    ASSERT_TRUE(other.grab(keyR, superControl | XCB_MOD_MASK_2));
    add(recording, State::conflicting);
    EXPECT_TRUE(soon([&] { return other.grab(keyR, superControl); }));
    pressChord(keyR);
    EXPECT_EQ(firings(recording), 0);
    EXPECT_EQ(other.presses(), 1);
}

TEST_F(Hotkeys, GetsWhatAnotherProgramHasLetGoOf) {
    OtherClient other;
    ASSERT_TRUE(other.grab(keyR, superControl));
    const auto id = add(recording, State::conflicting);
    other.ungrab(keyR, superControl);
    hotkeys->remove(id);
    add(recording);
    pressChord(keyR);
    EXPECT_EQ(firings(recording), 1);
}

TEST_F(Hotkeys, TriesAConflictAgainWhenTheKeyboardChanges) {
    OtherClient other;
    ASSERT_TRUE(other.grab(keyR, superControl));
    const auto id = add(recording, State::conflicting);
    other.ungrab(keyR, superControl);
    setLayout({u"de"_s});
    EXPECT_TRUE(soon([&] { return hotkeys->state(id) == State::active; }));
    EXPECT_TRUE(soon([&] { return states == std::vector{State::conflicting, State::active}; }));
    pressChord(keyR);
    EXPECT_EQ(firings(recording), 1);
}

TEST_F(Hotkeys, LetsGoOfWhatIsRemoved) {
    const auto id = add(overlay);
    add(recording);
    OtherClient other;
    EXPECT_FALSE(other.grab(keyP, superControl));
    hotkeys->remove(id);
    EXPECT_EQ(hotkeys->state(id), State::unsupported);
    pressChord(keyP);
    EXPECT_EQ(firings(overlay), 0);
    EXPECT_TRUE(other.grab(keyP, superControl));
    EXPECT_TRUE(other.grab(keyP, superControl | XCB_MOD_MASK_LOCK));
    EXPECT_TRUE(other.grab(keyP, superControl | XCB_MOD_MASK_2));
    EXPECT_TRUE(other.grab(keyP, superControl | XCB_MOD_MASK_2 | XCB_MOD_MASK_LOCK));
    pressChord(keyR);
    EXPECT_EQ(firings(recording), 1);
    EXPECT_FALSE(other.grab(keyR, superControl));
}

TEST_F(Hotkeys, LetGoOfAllInTheEnd) {
    add(overlay);
    hotkeys.reset();
    OtherClient other;
    EXPECT_TRUE(soon([&] { return other.grab(keyP, superControl); }));
}

TEST_F(Hotkeys, ServeACombinationThatIsAskedForTwice) {
    const auto first = add(overlay);
    add(overlay);
    pressChord(keyP);
    EXPECT_EQ(firings(overlay), 2);
    hotkeys->remove(first);
    pressChord(keyP);
    EXPECT_EQ(firings(overlay), 3);
}

TEST_F(Hotkeys, MayBeRemovedAndAddedByTheirOwnHandlers) {
    GlobalHotkeys::Id own = 0;
    int ownFirings = 0;
    std::function<void()> again = [&] {
        ++ownFirings;
        hotkeys->remove(own);
        own = hotkeys->add(overlay, {.released = again, .stateChanged = [](State) {}});
    };
    own = hotkeys->add(overlay, {.released = again, .stateChanged = [](State) {}});
    const auto victim = add(recording);
    hotkeys->add(recording, {.released = [&] { hotkeys->remove(victim); }, .stateChanged = [](State) {}});
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(soon([&] { return hotkeys->state(own) == State::active; }));
        pressChord(keyP);
        EXPECT_TRUE(soon([&] { return ownFirings == round; }));
    }
    pressChord(keyR);
    pressChord(keyR);
    EXPECT_EQ(firings(recording), 1);
    EXPECT_EQ(ownFirings, 3);
}

TEST_F(Hotkeys, MayEndWithAllOthersInAHandler) {
    bool ended = false;
    hotkeys->add(overlay, {.released =
                               [&] {
                                   hotkeys.reset();
                                   ended = true;
                               },
                           .stateChanged = [](State) {}});
    add(recording);
    pressChord(keyP);
    EXPECT_TRUE(soon([&] { return ended; }));
    QCoreApplication::processEvents();
    OtherClient other;
    EXPECT_TRUE(other.grab(keyP, superControl));
}

TEST_F(Hotkeys, AreUnsupportedWithoutTheirKey) {
    testing::internal::CaptureStderr();
    add({9999, commandControl}, State::unsupported);
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        "orvane: the hotkey Super+Ctrl+key 9999 does not work: there is no such key. Choose another one in "
        "Settings.\n");
    EXPECT_TRUE(soon([&] { return states == std::vector{State::unsupported}; }));
    add(overlay);
    pressChord(keyP);
    EXPECT_EQ(firings(overlay), 1);
}

TEST_F(Hotkeys, SayOnceThatTheirKeyIsMissingHoweverOftenTheKeyboardChanges) {
    testing::internal::CaptureStderr();
    const auto id = add({9999, commandControl}, State::unsupported);
    add(mode);
    for (const QString& layout : {u"fr"_s, u"us"_s}) {
        setLayout({layout});
        // Found at its new place once the change is known.
        const QString& key = layout == u"fr"_s ? keyQ : keyA;
        const int before = fired[mode.toJson()];
        EXPECT_TRUE(soon([&] {
            pressChord(key);
            return fired[mode.toJson()] > before;
        }));
    }
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_EQ(hotkeys->state(id), State::unsupported);
}

TEST_F(Hotkeys, DoNotWaitForAServerThatHangs) {
    const auto first = add(overlay);
    const auto server = static_cast<pid_t>(desktop.xServerPid());
    ::kill(server, SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    const auto second = hotkeys->add(
        recording, {.released = [&] { ++fired[recording.toJson()]; }, .stateChanged = [](State) {}});
    hotkeys->remove(first);
    QCoreApplication::processEvents();
    EXPECT_LT(timer.elapsed(), 1000);
    EXPECT_EQ(hotkeys->state(second), State::pending);
    ::kill(server, SIGCONT);
    EXPECT_TRUE(soon([&] { return hotkeys->state(second) == State::active; }));
    pressChord(keyR);
    EXPECT_TRUE(soon([&] { return fired[recording.toJson()] == 1; }));
    OtherClient other;
    EXPECT_TRUE(soon([&] { return other.grab(keyP, superControl); }));
}

TEST_F(Hotkeys, SayOnceThatTheServerIsGone) {
    const auto id = add(overlay);
    const auto next = add(recording);
    testing::internal::CaptureStderr();
    ::kill(static_cast<pid_t>(desktop.xServerPid()), SIGKILL);
    EXPECT_TRUE(soon([&] { return hotkeys->state(id) == State::unsupported; }));
    EXPECT_EQ(hotkeys->state(next), State::unsupported);
    EXPECT_TRUE(soon([&] { return states.size() == 4; }));
    // A loop that has nothing to do sleeps; one that spins would wake thousands of times.
    int wakings = 0;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &application,
                     [&] { ++wakings; });
    QTimer end;
    QObject::connect(&end, &QTimer::timeout, &application, &QCoreApplication::quit);
    end.start(200);
    QCoreApplication::exec();
    EXPECT_LT(wakings, 20);
    const auto late = add(history, State::unsupported);
    hotkeys->remove(late);
    hotkeys->remove(id);
    QCoreApplication::processEvents();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "orvane: hotkeys do not work any more: the connection to the X server was lost\n");
}

namespace {

class HotkeysOfTwoMonitors : public Hotkeys {
protected:
    HotkeysOfTwoMonitors()
        : Hotkeys({u"--size"_s, u"1600x600"_s, u"--monitors"_s, u"A:800x600+0+0,B:800x600+800+0"_s}) {}
};

} // namespace

TEST_F(HotkeysOfTwoMonitors, WorkOnBoth) {
    add(overlay);
    int expected = 0;
    for (const QString& x : {u"100"_s, u"1500"_s}) {
        xdotool({u"mousemove"_s, x, u"300"_s});
        pressChord(keyP);
        EXPECT_EQ(firings(overlay), ++expected);
    }
}

TEST(HotkeysWithoutADisplay, AreUnsupportedAndSaySoOnce) {
    int argumentCount = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    qputenv("DISPLAY", ":7777");
    x11::X11Hotkeys hotkeys;
    std::vector<State> states;
    const GlobalHotkeys::Handlers handlers{.released = [] {},
                                           .stateChanged = [&](State state) { states.push_back(state); }};
    testing::internal::CaptureStderr();
    const auto first = hotkeys.add(overlay, handlers);
    const auto second = hotkeys.add(recording, handlers);
    EXPECT_NE(first, second);
    EXPECT_TRUE(states.empty());
    EXPECT_TRUE(eventually([&] {
        QCoreApplication::processEvents();
        return states == std::vector{State::unsupported, State::unsupported};
    }));
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(log.find("orvane: hotkeys do not work: "), 0U) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_EQ(hotkeys.state(first), State::unsupported);
    hotkeys.remove(first);
}

} // namespace orvane::test
