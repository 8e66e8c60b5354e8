#pragma once

#include "OrvanePlatform/x11/KeyboardMap.h"
#include "OrvanePlatform/x11/X11Connection.h"

#include <QSocketNotifier>
#include <QTimer>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace orvane::x11 {

/// Holds key combinations of the X server for this program, on every screen, and tells of their presses.
/// Main thread only, and driven by its event loop. Nothing here waits for the server but the constructor:
/// what is asked for is sent, and the answer comes to the listener.
class KeyGrabs {
public:
    /// Called from the event loop, never from inside a call of this class.
    struct Listener {
        /// Soon after the start, and after each change of the keyboard.
        std::function<void(const KeyboardMap& map)> mapRead;
        /// Combinations that were asked for and that the server refused; all others are held now.
        std::function<void(const std::set<KeyCombination>& asked, const std::set<KeyCombination>& refused)>
            settled;
        /// A key went down. While one that is held is down this tells of all others, too; it comes again and
        /// again for a key that stays down, and without a release in between.
        std::function<void(const KeyCombination& combination)> pressed;
        std::function<void(xcb_keycode_t keycode)> released;
        /// The server is gone; the last call.
        std::function<void()> lost;
    };

    /// The connection has to be one that nobody else uses. Throws PlatformError when the server lacks XKB.
    KeyGrabs(std::shared_ptr<X11Connection> connection, Listener listener);

    /// Asks for exactly these combinations: those held by now and not among them are let go of.
    void hold(std::set<KeyCombination> wanted);

    /// Lets go of some of them.
    void release(const std::set<KeyCombination>& combinations);

private:
    void startXkb();
    void wake();
    void pump();
    void handleEvents();
    void handle(const xcb_generic_event_t& event);
    void handleXkb(const xcb_generic_event_t& event);
    void noteRefusal(const xcb_generic_error_t& error);
    void readMap();
    bool takeMap();
    bool takeVerdict();
    void sendWanted();
    void sendUngrab(const KeyCombination& combination);

    struct MapRequest {
        unsigned keysyms;
        unsigned modifiers;
        xcb_keycode_t firstKeycode;
    };

    std::shared_ptr<X11Connection> m_connection;
    Listener m_listener;
    std::vector<xcb_window_t> m_roots;
    xcb_keycode_t m_firstKeycode;
    xcb_keycode_t m_lastKeycode;
    std::uint8_t m_xkbEvent = 0;

    std::optional<MapRequest> m_mapRequest;
    Owned<xcb_get_keyboard_mapping_reply_t> m_keysymsReply;
    bool m_mapIsStale = false;

    /// What is to be asked for once the server has answered what it was asked before.
    std::optional<std::set<KeyCombination>> m_wanted;
    /// What the server is deciding on; its answer to `m_verdict` comes after all refusals.
    std::set<KeyCombination> m_asked;
    std::map<unsigned, KeyCombination> m_requests;
    std::set<KeyCombination> m_refused;
    std::optional<unsigned> m_verdict;
    std::set<KeyCombination> m_held;

    bool m_lost = false;
    // Last, so that no call of the event loop finds a part of this object gone.
    QTimer m_wake;
    QSocketNotifier m_notifier;
};

} // namespace orvane::x11
