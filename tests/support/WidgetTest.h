#pragma once

#include "tests/support/EventLoop.h"

#include <QApplication>
#include <QImage>
#include <QInputMethodEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <vector>

namespace orvane::test {

/// What the widgets stand in: an active window that remembers what reaches it, and takes the keyboard by its
/// own rules only.
class WidgetGround : public QWidget {
public:
    explicit WidgetGround(const QSize& size) {
        resize(size);
        setMouseTracking(true);
        setCursor(Qt::CrossCursor);
        show();
        activateWindow();
        if (!eventuallyInLoop([this] { return isActiveWindow(); }))
            qFatal("the window does not become active");
        setFocus();
    }

    std::vector<QEvent::Type> reached;

protected:
    bool event(QEvent* event) override {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            reached.push_back(event->type());
            break;
        default:
            break;
        }
        return QWidget::event(event);
    }
};

/// The widget's place in its window, where a real click arrives first.
inline QPoint inWindow(const QWidget& widget, const QPoint& place) {
    return widget.mapTo(widget.window(), place);
}

inline void click(QWidget& widget, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseClick(widget.window()->windowHandle(), button, Qt::NoModifier,
                      inWindow(widget, widget.rect().center()));
}

inline void pressAt(QWidget& widget, const QPoint& place) {
    QTest::mousePress(widget.window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      inWindow(widget, place));
}

inline void moveTo(QWidget& window, const QPoint& place) {
    QTest::mouseMove(window.windowHandle(), place);
}

inline void releaseAt(QWidget& window, const QPoint& place) {
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, place);
}

/// To whoever has the keyboard.
inline void typeKey(QWidget& window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(window.windowHandle(), key, modifiers);
}

inline void typeText(const QString& text) {
    QTest::keyClicks(QApplication::focusWidget(), text);
}

/// Keys that mean something elsewhere stay with the editor that has the keyboard.
inline void expectNoKeyPasses(WidgetGround& ground, const QWidget& editor) {
    for (const Qt::Key key :
         {Qt::Key_M, Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down,
          Qt::Key_Backspace, Qt::Key_Delete, Qt::Key_PageUp, Qt::Key_F5}) {
        for (const Qt::KeyboardModifiers modifiers :
             {Qt::KeyboardModifiers(), Qt::KeyboardModifiers(Qt::ControlModifier),
              Qt::KeyboardModifiers(Qt::ShiftModifier), Qt::KeyboardModifiers(Qt::AltModifier)}) {
            typeKey(ground, key, modifiers);
            ASSERT_TRUE(editor.hasFocus()) << key << ' ' << modifiers.toInt();
            ASSERT_TRUE(ground.reached.empty()) << key << ' ' << modifiers.toInt();
        }
    }
}

/// As an input method does it.
inline void compose(const QString& preedit) {
    QInputMethodEvent event(preedit, {});
    QApplication::sendEvent(QApplication::focusWidget(), &event);
}

inline void commit(const QString& text) {
    QInputMethodEvent event;
    event.setCommitString(text);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
}

/// One pixel a point.
inline QImage pictureOf(QWidget& widget) {
    QImage picture(widget.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    widget.render(&picture);
    return picture.convertToFormat(QImage::Format_ARGB32);
}

} // namespace orvane::test
