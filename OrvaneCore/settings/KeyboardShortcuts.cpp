#include "OrvaneCore/settings/KeyboardShortcuts.h"

#include "OrvaneCore/base/Log.h"

#include <QJsonValue>

#include <utility>

namespace orvane {

using namespace Qt::StringLiterals;

namespace {

QString settingsKey(HotkeyName name) {
    return u"KeyboardShortcuts_%1"_s.arg(KeyboardShortcuts::definition(name).storedName);
}

/// The hotkey and what it is for, such as "Super+Ctrl+P (Annotate Screen)".
QString described(const Shortcut& shortcut, HotkeyName name, const PlatformWords& words) {
    QStringView label = KeyboardShortcuts::definition(name).label;
    label.chop(1);
    return u"%1 (%2)"_s.arg(words.hotkeyName(shortcut), label);
}

/// `before` is the state that was told last.
void logState(GlobalHotkeys::State before, GlobalHotkeys::State now, const QString& hotkey) {
    using State = GlobalHotkeys::State;
    if (now == State::conflicting) {
        logLine(
            u"the hotkey %1 is held by another program. Choose another one in Settings, or free it in that "
            "program and restart Orvane."_s.arg(hotkey));
    } else if (now == State::active && before != State::pending) {
        logLine(u"the hotkey %1 works now"_s.arg(hotkey));
    }
}

} // namespace

const HotkeyDefinition& KeyboardShortcuts::definition(HotkeyName name) {
    return definitions.at(static_cast<std::size_t>(name));
}

KeyboardShortcuts::KeyboardShortcuts(SettingsStore& settings, GlobalHotkeys& hotkeys,
                                     const PlatformWords& words)
    : m_settings(settings)
    , m_hotkeys(hotkeys)
    , m_words(words) {}

KeyboardShortcuts::~KeyboardShortcuts() {
    for (const HotkeyDefinition& hotkey : definitions)
        release(hotkey.name);
}

void KeyboardShortcuts::onKeyUp(HotkeyName name, std::function<void()> action) {
    entry(name).actions.push_back(std::move(action));
    if (!entry(name).id)
        hold(name, getShortcut(name));
}

void KeyboardShortcuts::setShortcut(const std::optional<Shortcut>& shortcut, HotkeyName name) {
    m_settings.setValue(settingsKey(name), shortcut ? QJsonValue(shortcut->toJson()) : QJsonValue(false));
    release(name);
    if (!entry(name).actions.empty())
        hold(name, shortcut);
}

std::optional<Shortcut> KeyboardShortcuts::getShortcut(HotkeyName name) {
    const QString key = settingsKey(name);
    const Shortcut byDefault = definition(name).defaultShortcut;
    const QJsonValue stored = m_settings.value(key);
    if (stored.isUndefined()) {
        m_settings.setValue(key, byDefault.toJson());
        return byDefault;
    }
    if (stored.isBool() && !stored.toBool())
        return std::nullopt;
    // No shortcut can be read from what is no string: it gives an empty text.
    if (const auto shortcut = Shortcut::fromJson(stored.toString()))
        return shortcut;
    if (!std::exchange(entry(name).damageLogged, true)) {
        logLine(u"the setting %1 holds no hotkey that this version can read; %2 is used until another one is "
                "chosen in Settings"_s.arg(key, m_words.hotkeyName(byDefault)));
    }
    return byDefault;
}

std::optional<GlobalHotkeys::State> KeyboardShortcuts::state(HotkeyName name) const {
    const std::optional<GlobalHotkeys::Id>& id = m_entries.at(static_cast<std::size_t>(name)).id;
    return id ? std::optional(m_hotkeys.state(*id)) : std::nullopt;
}

void KeyboardShortcuts::release(HotkeyName name) {
    if (const auto id = std::exchange(entry(name).id, std::nullopt))
        m_hotkeys.remove(*id);
}

void KeyboardShortcuts::hold(HotkeyName name, const std::optional<Shortcut>& shortcut) {
    if (!shortcut)
        return;
    entry(name).id = m_hotkeys.add(
        *shortcut,
        {.released = [this, name] { keyUp(name); },
         .stateChanged =
             [hotkey = described(*shortcut, name, m_words), before = GlobalHotkeys::State::pending](
                 GlobalHotkeys::State now) mutable { logState(std::exchange(before, now), now, hotkey); }});
}

void KeyboardShortcuts::keyUp(HotkeyName name) {
    // An action may add another one to the list it is in.
    const std::vector<std::function<void()>> actions = entry(name).actions;
    for (const auto& action : actions)
        action();
}

} // namespace orvane
