#pragma once

#include "OrvanePlatform/x11/X11Connection.h"
#include "OrvanePlatform/x11/X11Hotkeys.h"
#include "OrvanePlatform/x11/Xkb.h"
#include "tests/support/Eventually.h"
#include "tests/support/VirtualDesktop.h"

#include <QCoreApplication>
#include <QStringList>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace orvane::test {

using namespace Qt::StringLiterals;
using State = GlobalHotkeys::State;

constexpr int commandControl = Shortcut::command | Shortcut::control;
constexpr Shortcut overlay{35, commandControl};
constexpr Shortcut recording{15, commandControl};
constexpr Shortcut history{4, commandControl};
constexpr Shortcut draw{2, commandControl};
constexpr Shortcut mode{0, commandControl};
/// Pressed after what must not fire: the server keeps the order, so what has not fired by then never will.
constexpr Shortcut sentinel{111, 0};

// Keys by their place, as a PC keyboard has them.
inline const QString superKey = u"133"_s;
inline const QString controlKey = u"37"_s;
inline const QString shiftKey = u"50"_s;
inline const QString altKey = u"64"_s;
inline const QString capsLockKey = u"66"_s;
inline const QString numLockKey = u"77"_s;
inline const QString keyA = u"38"_s;
inline const QString keyD = u"40"_s;
inline const QString keyH = u"43"_s;
inline const QString keyP = u"33"_s;
inline const QString keyQ = u"24"_s;
inline const QString keyR = u"27"_s;
inline const QString keyF12 = u"96"_s;
inline const QString keyX = u"53"_s;

constexpr std::uint16_t superControl = XCB_MOD_MASK_4 | XCB_MOD_MASK_CONTROL;

inline void xdotool(const QStringList& arguments) {
    runCommand(u"xdotool"_s, arguments);
}

inline void setLayout(const QStringList& arguments) {
    runCommand(u"setxkbmap"_s, arguments);
}

inline QStringList press(const QStringList& keys) {
    QStringList arguments;
    for (const QString& key : keys)
        arguments << u"keydown"_s << key;
    for (qsizetype i = keys.size(); i > 0; --i)
        arguments << u"keyup"_s << keys.at(i - 1);
    return arguments;
}

inline void pressChord(const QString& key) {
    xdotool(press({superKey, controlKey, key}));
}

/// Another program of the desktop, which knows nothing of auto-repeat.
class OtherClient {
public:
    bool grab(const QString& key, std::uint16_t modifiers) {
        const x11::Owned<xcb_generic_error_t> error(xcb_request_check(
            m_connection->raw(), xcb_grab_key_checked(m_connection->raw(), 0, m_connection->root(), modifiers,
                                                      static_cast<xcb_keycode_t>(key.toInt()),
                                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
        return !error;
    }

    void ungrab(const QString& key, std::uint16_t modifiers) {
        xcb_ungrab_key(m_connection->raw(), static_cast<xcb_keycode_t>(key.toInt()), m_connection->root(),
                       modifiers);
        m_connection->sync();
    }

    int presses() {
        while (const auto event = x11::Owned<xcb_generic_event_t>(xcb_poll_for_event(m_connection->raw())))
            m_presses += event->response_type == XCB_KEY_PRESS ? 1 : 0;
        return m_presses;
    }

    /// Makes that layout the one that is typed with, counted from 0.
    void lockLayout(std::uint8_t layout) {
        m_connection->reply<xcb_xkb_use_extension_reply>(xcb_xkb_use_extension(m_connection->raw(), 1, 0));
        xcb_xkb_latch_lock_state(m_connection->raw(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, layout, 0, 0, 0);
        m_connection->sync();
        const auto state = m_connection->reply<xcb_xkb_get_state_reply>(
            xcb_xkb_get_state(m_connection->raw(), XCB_XKB_ID_USE_CORE_KBD));
        ASSERT_TRUE(state);
        ASSERT_EQ(state->group, layout);
    }

    /// Which locks are on.
    std::uint16_t locks() {
        const auto pointer = m_connection->reply<xcb_query_pointer_reply>(
            xcb_query_pointer(m_connection->raw(), m_connection->root()));
        return pointer ? pointer->mask : 0;
    }

private:
    std::shared_ptr<x11::X11Connection> m_connection = x11::X11Connection::open();
    int m_presses = 0;
};

/// Hotkeys on a desktop of their own, pressed through the X server's test extension.
class Hotkeys : public testing::Test {
protected:
    explicit Hotkeys(const QStringList& desktopOptions = {u"--size"_s, u"1280x800"_s})
        : desktop(desktopOptions)
        , application(argumentCount, arguments) {}

    template <typename Condition>
    bool soon(Condition condition, int deadlineMs = 5000) {
        return eventually(
            [&] {
                QCoreApplication::processEvents();
                return condition();
            },
            deadlineMs);
    }

    /// Adds one that counts into `fired` under its text, and waits until the server has decided on it.
    GlobalHotkeys::Id add(const Shortcut& shortcut, State expected = State::active) {
        const auto id =
            hotkeys->add(shortcut, {.released = [this, shortcut] { ++fired[shortcut.toJson()]; },
                                    .stateChanged = [this](State state) { states.push_back(state); }});
        EXPECT_TRUE(soon([&] { return hotkeys->state(id) == expected; })) << shortcut.toJson().toStdString();
        return id;
    }

    /// How often a hotkey has fired, once all that was pressed before has had its effect.
    int firings(const Shortcut& shortcut) {
        const QString sentinelText = sentinel.toJson();
        if (!m_sentinel)
            m_sentinel = add(sentinel);
        const int before = fired[sentinelText];
        xdotool({u"key"_s, keyF12});
        EXPECT_TRUE(soon([&] { return fired[sentinelText] == before + 1; })) << "the sentinel did not fire";
        return fired[shortcut.toJson()];
    }

    VirtualDesktop desktop;
    int argumentCount = 1;
    char name[5] = "test";
    char* arguments[2] = {name, nullptr};
    QCoreApplication application;
    std::unique_ptr<x11::X11Hotkeys> hotkeys = std::make_unique<x11::X11Hotkeys>();
    std::map<QString, int> fired;
    std::vector<State> states;

private:
    std::optional<GlobalHotkeys::Id> m_sentinel;
};

} // namespace orvane::test
