#pragma once

#include "OrvaneCore/platform/GlobalHotkeys.h"

#include <map>
#include <utility>

namespace orvane::test {

/// Hotkeys that a test presses: they are pending until the test tells their state.
class FakeHotkeys final : public GlobalHotkeys {
public:
    struct Hotkey {
        Shortcut shortcut;
        Handlers handlers;
        State state = State::pending;
    };

    /// Those that are asked for now.
    std::map<Id, Hotkey> hotkeys;
    int additions = 0;

    Id add(const Shortcut& shortcut, Handlers handlers) override {
        const auto id = static_cast<Id>(++additions);
        hotkeys[id] = {shortcut, std::move(handlers)};
        return id;
    }

    void remove(Id id) override { hotkeys.erase(id); }

    State state(Id id) const override {
        const auto found = hotkeys.find(id);
        return found == hotkeys.end() ? State::unsupported : found->second.state;
    }

    /// Presses and releases a combination; says how many hotkeys it served.
    int press(const Shortcut& shortcut) {
        int served = 0;
        for (const auto& [id, hotkey] : std::map<Id, Hotkey>(hotkeys)) {
            if (hotkey.shortcut == shortcut && hotkeys.contains(id)) {
                hotkey.handlers.released();
                ++served;
            }
        }
        return served;
    }

    /// Gives all hotkeys of a combination a state.
    void tell(const Shortcut& shortcut, State state) {
        for (auto& [id, hotkey] : hotkeys) {
            if (hotkey.shortcut == shortcut && std::exchange(hotkey.state, state) != state)
                hotkey.handlers.stateChanged(state);
        }
    }
};

} // namespace orvane::test
