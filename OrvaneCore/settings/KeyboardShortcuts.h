#pragma once

#include "OrvaneCore/platform/GlobalHotkeys.h"
#include "OrvaneCore/platform/PlatformWords.h"
#include "OrvaneCore/platform/SettingsStore.h"
#include "OrvaneCore/platform/Shortcut.h"

#include <QString>
#include <QStringView>

#include <array>
#include <functional>
#include <optional>
#include <vector>

namespace orvane {

enum class HotkeyName { toggleOverlay, togglePresentDraw, togglePresentMode, toggleRecording, toggleHistory };

struct HotkeyDefinition {
    HotkeyName name;
    /// What follows "KeyboardShortcuts_" in the settings key.
    QStringView storedName;
    QStringView label;
    Shortcut defaultShortcut;
};

/// The program's named hotkeys: which combination the user gave each of them, and what they do. Main thread.
///
/// A hotkey is stored as the text of its shortcut, or as false when the user cleared it. The default of one
/// that is not stored is written when it is first asked for. A stored value that is neither is left as it is
/// (a newer version may know it), logged once, and the default holds until `setShortcut`.
class KeyboardShortcuts {
public:
    /// The order is the one in which they are shown.
    static constexpr std::array<HotkeyDefinition, 5> definitions{{
        {HotkeyName::toggleOverlay,
         u"toggleOverlay",
         u"Annotate Screen:",
         {35, Shortcut::command | Shortcut::control}},
        {HotkeyName::togglePresentDraw,
         u"togglePresentDraw",
         u"Present / Draw:",
         {2, Shortcut::command | Shortcut::control}},
        {HotkeyName::togglePresentMode,
         u"togglePresentMode",
         u"Draw ⇄ Click-through:",
         {0, Shortcut::command | Shortcut::control}},
        {HotkeyName::toggleRecording,
         u"toggleRecording",
         u"Record Screen:",
         {15, Shortcut::command | Shortcut::control}},
        {HotkeyName::toggleHistory,
         u"toggleHistory",
         u"History:",
         {4, Shortcut::command | Shortcut::control}},
    }};

    static const HotkeyDefinition& definition(HotkeyName name);

    /// All must outlive this object.
    KeyboardShortcuts(SettingsStore& settings, GlobalHotkeys& hotkeys, const PlatformWords& words);
    ~KeyboardShortcuts();
    KeyboardShortcuts(const KeyboardShortcuts&) = delete;
    KeyboardShortcuts& operator=(const KeyboardShortcuts&) = delete;

    /// From now on the action is called each time the hotkey's key goes up, after those given before.
    void onKeyUp(HotkeyName name, std::function<void()> action);

    /// Stores a shortcut, or that there is none, and works by it at once. One that another program held is
    /// tried again, the same or another.
    void setShortcut(const std::optional<Shortcut>& shortcut, HotkeyName name);

    /// The one that is stored now, else the default. Nothing when the user cleared it.
    std::optional<Shortcut> getShortcut(HotkeyName name);

    /// Nothing while no key is asked for: it is cleared, or there is no action yet.
    std::optional<GlobalHotkeys::State> state(HotkeyName name) const;

private:
    struct Entry {
        std::vector<std::function<void()>> actions;
        std::optional<GlobalHotkeys::Id> id;
        bool damageLogged = false;
    };

    Entry& entry(HotkeyName name) { return m_entries.at(static_cast<std::size_t>(name)); }
    void release(HotkeyName name);
    void hold(HotkeyName name, const std::optional<Shortcut>& shortcut);
    void keyUp(HotkeyName name);

    SettingsStore& m_settings;
    GlobalHotkeys& m_hotkeys;
    const PlatformWords& m_words;
    std::array<Entry, definitions.size()> m_entries;
};

} // namespace orvane
