#include "OrvanePlatform/x11/X11Hotkeys.h"

#include "OrvaneCore/base/Log.h"
#include "OrvaneCore/platform/PlatformError.h"
#include "OrvanePlatform/freedesktop/DesktopWords.h"
#include "OrvanePlatform/x11/X11Connection.h"

#include <algorithm>

namespace orvane::x11 {

using namespace Qt::StringLiterals;

X11Hotkeys::X11Hotkeys() {
    m_nextCall.setSingleShot(true);
    QObject::connect(&m_nextCall, &QTimer::timeout, &m_nextCall, [this] { deliverNext(); });
}

GlobalHotkeys::Id X11Hotkeys::add(const Shortcut& shortcut, Handlers handlers) {
    connect();
    const Id id = ++m_lastId;
    Hotkey& hotkey = m_hotkeys[id];
    hotkey.shortcut = shortcut;
    hotkey.handlers = std::move(handlers);
    if (m_unavailable) {
        setState(id, hotkey, State::unsupported);
    } else if (m_map) {
        place(id, hotkey);
        askForAll();
    }
    return id;
}

void X11Hotkeys::remove(Id id) {
    if (m_hotkeys.erase(id) != 0 && !m_unavailable && m_map)
        askForAll();
}

GlobalHotkeys::State X11Hotkeys::state(Id id) const {
    const auto found = m_hotkeys.find(id);
    return found == m_hotkeys.end() ? State::unsupported : found->second.state;
}

void X11Hotkeys::connect() {
    if (m_grabs || m_unavailable)
        return;
    try {
        m_grabs = std::make_unique<KeyGrabs>(
            X11Connection::open(),
            KeyGrabs::Listener{
                .mapRead = [this](const KeyboardMap& map) { mapRead(map); },
                .settled = [this](const std::set<KeyCombination>& asked,
                                  const std::set<KeyCombination>& refused) { settled(asked, refused); },
                .pressed = [this](const KeyCombination& combination) { pressed(combination); },
                .released = [this](xcb_keycode_t keycode) { released(keycode); },
                .lost = [this] { lost(); },
            });
    } catch (const PlatformError& error) {
        m_unavailable = true;
        logLine(u"hotkeys do not work: %1"_s.arg(error.message()));
    }
}

/// Finds the hotkey's keys on the keyboard as it is now.
void X11Hotkeys::place(Id id, Hotkey& hotkey) {
    KeyboardMap::Keys keys = m_map->keysFor(hotkey.shortcut);
    hotkey.combinations = std::move(keys.combinations);
    hotkey.grabs.clear();
    for (const KeyCombination& combination : hotkey.combinations)
        hotkey.grabs.merge(m_map->lockVariants(combination));
    if (!hotkey.combinations.empty()) {
        if (hotkey.state == State::unsupported)
            setState(id, hotkey, State::pending);
    } else if (hotkey.state != State::unsupported) {
        logLine(u"the hotkey %1 does not work: %2. Choose another one in Settings."_s.arg(
            freedesktop::desktopWords().hotkeyName(hotkey.shortcut), keys.problem));
        setState(id, hotkey, State::unsupported);
    }
}

void X11Hotkeys::askForAll() {
    std::set<KeyCombination> wanted;
    for (const auto& [id, hotkey] : m_hotkeys)
        wanted.insert(hotkey.grabs.begin(), hotkey.grabs.end());
    m_grabs->hold(std::move(wanted));
}

void X11Hotkeys::setState(Id id, Hotkey& hotkey, State state) {
    if (std::exchange(hotkey.state, state) != state)
        deliver(id, [state](const Handlers& handlers) { handlers.stateChanged(state); });
}

void X11Hotkeys::deliver(Id id, std::function<void(const Handlers&)> call) {
    m_calls.emplace_back(id, std::move(call));
    m_nextCall.start();
}

void X11Hotkeys::deliverNext() {
    const auto [id, call] = std::move(m_calls.front());
    m_calls.pop_front();
    if (!m_calls.empty())
        m_nextCall.start();
    const auto found = m_hotkeys.find(id);
    if (found == m_hotkeys.end())
        return;
    // The handler may remove its own hotkey, and even end this object.
    const Handlers handlers = found->second.handlers;
    call(handlers);
}

void X11Hotkeys::mapRead(const KeyboardMap& map) {
    m_map = map;
    for (auto& [id, hotkey] : m_hotkeys)
        place(id, hotkey);
    askForAll();
}

void X11Hotkeys::settled(const std::set<KeyCombination>& asked, const std::set<KeyCombination>& refused) {
    std::set<KeyCombination> needless = asked;
    for (auto& [id, hotkey] : m_hotkeys) {
        const auto isRefused = [&refused](const KeyCombination& grab) { return refused.contains(grab); };
        // One that was added or moved meanwhile waits for the next answer.
        if (!hotkey.grabs.empty() &&
            std::includes(asked.begin(), asked.end(), hotkey.grabs.begin(), hotkey.grabs.end())) {
            const bool conflict = std::any_of(hotkey.grabs.begin(), hotkey.grabs.end(), isRefused);
            setState(id, hotkey, conflict ? State::conflicting : State::active);
        }
        if (hotkey.state != State::conflicting) {
            for (const KeyCombination& grab : hotkey.grabs)
                needless.erase(grab);
        }
    }
    // A hotkey that works only while NumLock is on, say, would be a riddle.
    m_grabs->release(needless);
}

void X11Hotkeys::pressed(const KeyCombination& combination) {
    const KeyCombination bare{combination.keycode, m_map->withoutLocks(combination.modifiers)};
    std::vector<Id> ids;
    for (const auto& [id, hotkey] : m_hotkeys) {
        if (hotkey.state == State::active && std::find(hotkey.combinations.begin(), hotkey.combinations.end(),
                                                       bare) != hotkey.combinations.end())
            ids.push_back(id);
    }
    // A key without a hotkey, or one that repeats after a modifier went up.
    if (ids.empty())
        return;
    const auto known = std::find_if(m_down.begin(), m_down.end(),
                                    [&bare](const auto& down) { return down.first == bare.keycode; });
    if (known == m_down.end()) {
        m_down.emplace_back(bare.keycode, std::move(ids));
    } else {
        known->second = std::move(ids);
    }
}

void X11Hotkeys::released(xcb_keycode_t keycode) {
    const auto known = std::find_if(m_down.begin(), m_down.end(),
                                    [keycode](const auto& down) { return down.first == keycode; });
    if (known == m_down.end())
        return;
    for (const Id id : known->second)
        deliver(id, [](const Handlers& handlers) { handlers.released(); });
    // The server lends the keyboard until the key that went down first goes up; the others' releases do not
    // come here any more.
    if (known == m_down.begin()) {
        m_down.clear();
    } else {
        m_down.erase(known);
    }
}

void X11Hotkeys::lost() {
    m_unavailable = true;
    logLine(u"hotkeys do not work any more: the connection to the X server was lost"_s);
    for (auto& [id, hotkey] : m_hotkeys)
        setState(id, hotkey, State::unsupported);
}

} // namespace orvane::x11
