#pragma once

#include "OrvaneCore/surface/PopoverPlacement.h"

#include <QString>
#include <QWidget>

#include <functional>

class QKeyEvent;

namespace orvane {

/// A bubble in a view, with an arrow to a point of it, in which a text is typed. While it is open it has the
/// keyboard, and no key and no mouse event over it reaches the view. Return submits and closes, Escape
/// closes; while an input method composes, both keys belong to it. Closing hides the bubble and gives the
/// keyboard back to the view; the owner deletes it later, never from within its calls. Main thread.
class PopoverBubble : public QWidget {
public:
    /// The point is one of the parent, in points. Everything is selected, to be typed over.
    void openAt(const QPointF& viewPoint);

    /// Closes at once, without submitting. What an input method was composing becomes part of the text.
    /// Does nothing when it is closed already.
    void closePopover();

    /// What has been typed, also after closing.
    virtual QString text() const = 0;

    /// Whether it was Escape that closed it.
    bool wasCancelled() const { return m_wasCancelled; }

    /// Called with the text, before the bubble closes.
    void setOnSubmit(std::function<void(const QString&)> onSubmit);
    /// Called once, when the bubble has gone from the screen, after a submit too.
    void setOnClose(std::function<void()> onClose);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    explicit PopoverBubble(QWidget* parent);

    /// The widget that takes the text, a child of this one. Once, in the constructor.
    void setEditor(QWidget* editor, const QSize& editorSize);
    virtual void selectAll() = 0;
    /// Whether a Return with these modifiers is a character of the text.
    virtual bool isLineBreak(const QKeyEvent& event) const = 0;

    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    bool handleKey(const QKeyEvent& event);
    void finishComposing();

    QWidget* m_editor = nullptr;
    QSize m_editorSize;
    PopoverPlacement m_placement;
    /// What an input method is composing in the editor.
    QString m_preedit;
    bool m_isOpen = false;
    bool m_wasCancelled = false;
    std::function<void(const QString&)> m_onSubmit;
    std::function<void()> m_onClose;
};

} // namespace orvane
