#pragma once

class QScreen;
class QWidget;

namespace orvane {

/// What a window of ours is for. That decides where it stands: from `chrome` on windows are above those of
/// all other programs, full-screen ones and the desktop's panels too, have no frame, and are above those of
/// the roles before them, `overlay` and `toast` together as the topmost. Within a role, and among these two,
/// the window that was shown last is above.
enum class SurfaceRole {
    /// Stands above other programs' windows, without a frame: the pin button, the history. How far above is
    /// the desktop's choice.
    panel,
    /// The frame around what is recorded. Clicks pass through it from the start.
    chrome,
    /// What is drawn on, over a display.
    canvas,
    /// Tools for a canvas.
    palette,
    /// A dialog that asks for a file. Dialogs that it opens are dressed as well; menus need not be.
    filePanel,
    /// Covers a display until the human is done with it.
    overlay,
    /// A notice. Clicks pass through it from the start.
    toast,
};

/// When a window has the keyboard.
enum class SurfaceKeyboard {
    never,
    /// From the moment in which a press lands in it.
    onClick,
    /// From the moment in which it is shown, and again when a press lands in it after it was lost.
    atOnce,
};

/// The windows of ours that are more than a window: dresses them for what they are for. Where such a window
/// is and how large it is, is set as for any other, in global points, before it is shown or while it is, also
/// onto another display. Main thread; outlives the windows' being shown. Nothing here waits or fails: what
/// the desktop cannot do is left out.
class Surfaces {
public:
    virtual ~Surfaces() = default;

    /// Whether windows can be translucent now. Where they cannot, an overlay shows a picture of the screen
    /// for its ground, and what lies on a canvas is its shape (QWidget::setMask).
    virtual bool canBeTranslucent() = 0;

    /// Makes a top-level window what it is to be, on a display. Once for each window, before it is shown for
    /// the first time, and after its attributes (Qt::WA_TranslucentBackground) are set. Its window flags are
    /// replaced.
    virtual void dress(QWidget& window, SurfaceRole role, SurfaceKeyboard keyboard, QScreen& screen) = 0;

    /// Whether presses and the pointer pass through a dressed window to what is below; while it is shown, or
    /// before. The keyboard stays where it is.
    virtual void setClickThrough(QWidget& window, bool isClickThrough) = 0;

    /// Gives the keyboard to a dressed window, as soon as it can be had; for a while, if need be. Nothing
    /// happens for one that never has it.
    virtual void takeKeyboard(QWidget& window) = 0;

    /// Gives the keyboard to whoever had it before a dressed window took it, unless the human has given it to
    /// somebody else meanwhile. For when the windows that took it are hidden or need it no longer.
    virtual void giveKeyboardBack() = 0;

protected:
    Surfaces() = default;
    Surfaces(const Surfaces&) = default;
    Surfaces& operator=(const Surfaces&) = default;
};

} // namespace orvane
