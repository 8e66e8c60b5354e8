#pragma once

#include "OrvaneCore/platform/Shortcut.h"

#include <QtGlobal>

#include <functional>

namespace orvane {

/// Key combinations that reach this program whichever window has the keyboard. Everything here happens on the
/// main thread, whose event loop has to run; no call waits for the desktop once the first `add` has
/// connected.
class GlobalHotkeys {
public:
    /// Never 0 and never given out twice.
    using Id = quint32;

    enum class State {
        /// The desktop has not answered yet.
        pending,
        active,
        /// Another program holds the combination. It is tried again when the keyboard's layout changes and
        /// whenever a hotkey is added or removed.
        conflicting,
        /// This keyboard or desktop cannot give it. Why has been logged.
        unsupported,
    };

    /// Both have to be given.
    struct Handlers {
        /// Called once for each press, when the key goes up. Which modifiers are still down by then does not
        /// matter; on the press they have to be exactly those of the shortcut.
        std::function<void()> released;
        /// Called after each change of the state, the first from `pending`.
        std::function<void(State)> stateChanged;
    };

    virtual ~GlobalHotkeys() = default;

    /// Asks for a combination. Both handlers are called from the event loop, never from inside a call of this
    /// class, so they may add and remove hotkeys. A combination that is added twice serves both.
    virtual Id add(const Shortcut& shortcut, Handlers handlers) = 0;

    /// None of its handlers is called from now on, not even for a key that is down. An unknown id does
    /// nothing.
    virtual void remove(Id id) = 0;

    /// `unsupported` for an unknown id.
    virtual State state(Id id) const = 0;

protected:
    GlobalHotkeys() = default;
    GlobalHotkeys(const GlobalHotkeys&) = default;
    GlobalHotkeys& operator=(const GlobalHotkeys&) = default;
};

} // namespace orvane
