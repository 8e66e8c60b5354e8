#pragma once

#include "OrvaneCore/platform/GlobalHotkeys.h"
#include "OrvanePlatform/x11/KeyGrabs.h"
#include "OrvanePlatform/x11/KeyboardMap.h"

#include <QTimer>

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace orvane::x11 {

/// Hotkeys of an X desktop, over a connection of their own: Command is Super, Option is Alt. The state of
/// CapsLock, NumLock and ScrollLock does not matter. Connects at the first `add`; a display that cannot be
/// had then, or is lost later, is logged once and all hotkeys are unsupported.
class X11Hotkeys final : public GlobalHotkeys {
public:
    X11Hotkeys();

    Id add(const Shortcut& shortcut, Handlers handlers) override;
    void remove(Id id) override;
    State state(Id id) const override;

private:
    struct Hotkey {
        Shortcut shortcut;
        Handlers handlers;
        State state = State::pending;
        std::vector<KeyCombination> combinations;
        /// The same with all lock modifiers.
        std::set<KeyCombination> grabs;
    };

    void connect();
    void place(Id id, Hotkey& hotkey);
    void askForAll();
    void setState(Id id, Hotkey& hotkey, State state);
    void deliver(Id id, std::function<void(const Handlers&)> call);
    void deliverNext();

    void mapRead(const KeyboardMap& map);
    void settled(const std::set<KeyCombination>& asked, const std::set<KeyCombination>& refused);
    void pressed(const KeyCombination& combination);
    void released(xcb_keycode_t keycode);
    void lost();

    std::map<Id, Hotkey> m_hotkeys;
    Id m_lastId = 0;
    std::optional<KeyboardMap> m_map;
    /// The keys that are down, with the hotkeys they were pressed for, in the order in which they went down.
    std::vector<std::pair<xcb_keycode_t, std::vector<Id>>> m_down;
    bool m_unavailable = false;
    std::unique_ptr<KeyGrabs> m_grabs;
    /// What handlers are to be told, one at each turn of the event loop.
    std::deque<std::pair<Id, std::function<void(const Handlers&)>>> m_calls;
    QTimer m_nextCall;
};

} // namespace orvane::x11
