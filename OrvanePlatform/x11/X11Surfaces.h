#pragma once

#include "OrvaneCore/platform/Surfaces.h"
#include "OrvanePlatform/x11/InputFocus.h"
#include "OrvanePlatform/x11/KeyboardSeeker.h"
#include "OrvanePlatform/x11/SurfaceStack.h"

#include <QObject>

#include <map>
#include <memory>

namespace orvane::x11 {

/// Windows on an X desktop, for processes whose Qt windows are there too. All but panels bypass the window
/// manager, so that they are above everything, where they are to be, and at once; what it would have done for
/// them, their order and the keyboard, is done here.
class X11Surfaces final : public Surfaces {
public:
    explicit X11Surfaces(X11Session& session)
        : m_session(session)
        , m_focus(session) {}

    bool canBeTranslucent() override;
    void dress(QWidget& window, SurfaceRole role, SurfaceKeyboard keyboard, QScreen& screen) override;
    void setClickThrough(QWidget& window, bool isClickThrough) override;
    void takeKeyboard(QWidget& window) override;
    void giveKeyboardBack() override;

private:
    void endOtherSearches(const QWidget& window);
    void askForKeyboard(const QWidget& window);

    X11Session& m_session;
    InputFocus m_focus;
    SurfaceStack m_stack;
    /// One for each window that may have the keyboard.
    std::map<const QObject*, std::unique_ptr<KeyboardSeeker>> m_seekers;
    /// Owns the connections to the windows; goes first.
    QObject m_watch;
};

} // namespace orvane::x11
