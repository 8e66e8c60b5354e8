#pragma once

#include "OrvaneCore/platform/Shortcut.h"

#include <QString>
#include <QStringView>

namespace orvane {

/// How the keyboard, the places and the permissions of this platform are called in what the human reads. Each
/// platform has one such table; the composition root hands it to whoever makes such texts. What agents read,
/// what stands in files and the log's fixed lines are the same everywhere and ask no table.
struct PlatformWords {
    /// The modifiers of a hotkey, which works whichever application has the keyboard.
    struct Modifiers {
        /// As a menu shows it beside a command.
        QString commandSign;
        QString command;
        QString control;
        QString option;
        QString shift;

        bool operator==(const Modifiers&) const = default;
    };

    /// What to do about what the program cannot use: the second line of a toast.
    struct Remedies {
        /// The desktop has not answered in time, which may mean that it does not let the program see it.
        QString screen;
        QString camera;
        QString microphone;

        bool operator==(const Remedies&) const = default;
    };

    Modifiers modifiers;
    /// What stands before a key that is pressed in a window: pasting is this and "V".
    QString commandInWindows;
    /// The key that takes away what is before the cursor, and the one for what is after it.
    QString deleteBackward;
    QString deleteForward;
    /// Where folders are shown, after "Open in".
    QString fileManager;
    /// Where the pin is, after "in your".
    QString tray;
    Remedies remedies;

    /// A hotkey as a menu or a hint shows it, such as "Super Ctrl P". What has no name is told by its number,
    /// here and below.
    QString hotkeyHint(const Shortcut& shortcut) const;

    /// A hotkey within a sentence, such as "Super+Ctrl+P".
    QString hotkeyName(const Shortcut& shortcut) const;

    /// A key that is pressed in a window, such as "Ctrl+V".
    QString keyInWindows(QStringView key) const;

    bool operator==(const PlatformWords&) const = default;
};

} // namespace orvane
