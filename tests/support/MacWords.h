#pragma once

#include "OrvaneCore/platform/PlatformWords.h"

namespace orvane::test {

/// The words of another platform than the one that the tests run on: what is made of them shows that nothing
/// else in a text depends on the platform.
inline PlatformWords macWords() {
    using namespace Qt::StringLiterals;
    return {.modifiers = {.commandSign = u"⌘"_s,
                          .command = u"Cmd"_s,
                          .control = u"Ctrl"_s,
                          .option = u"Option"_s,
                          .shift = u"Shift"_s},
            .commandInWindows = u"⌘"_s,
            .deleteBackward = u"Delete"_s,
            .deleteForward = u"Forward Delete"_s,
            .fileManager = u"Finder"_s,
            .tray = u"menu bar"_s,
            .remedies = {.screen = u"Enable in System Settings > Privacy & Security > Screen Recording"_s,
                         .camera = u"Enable in System Settings > Privacy > Camera"_s,
                         .microphone = u"Enable in System Settings > Privacy > Microphone"_s}};
}

} // namespace orvane::test
