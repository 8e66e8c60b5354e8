#include "OrvanePlatform/freedesktop/DesktopWords.h"

namespace orvane::freedesktop {

using namespace Qt::StringLiterals;

PlatformWords desktopWords() {
    return {
        .modifiers = {.commandSign = u"Super"_s,
                      .command = u"Super"_s,
                      .control = u"Ctrl"_s,
                      .option = u"Alt"_s,
                      .shift = u"Shift"_s},
        .commandInWindows = u"Ctrl+"_s,
        .deleteBackward = u"Backspace"_s,
        .deleteForward = u"Delete"_s,
        .fileManager = u"file manager"_s,
        .tray = u"tray"_s,
        // There are no switches to turn on here: something is missing, or belongs to somebody else.
        .remedies = {.screen = u"The desktop does not answer: try again"_s,
                     .camera = u"No camera can be opened: connect one, or join the group \"video\""_s,
                     .microphone = u"No microphone can be opened: connect one, or start the sound server"_s},
    };
}

} // namespace orvane::freedesktop
