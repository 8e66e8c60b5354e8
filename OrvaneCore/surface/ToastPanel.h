#pragma once

#include "OrvaneCore/surface/ToastLayout.h"

#include <QPixmap>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class QPainter;
class QScreen;

namespace orvane {

class DrawnText;
class Surfaces;

/// What a toast says.
struct ToastMessage {
    QString title;
    /// Nothing or an empty text: the title stands alone.
    std::optional<QString> subtitle;
    /// A symbol's name (SymbolGlyphs.h). One that is not known is no icon.
    std::optional<QString> icon;
};

/// The window of a toast on one screen. It neither takes the focus nor any input, and stands above all other
/// windows, full-screen ones too. Main thread.
class ToastPanel : public QWidget {
public:
    /// Opaque where windows cannot be translucent now. `closed` is called once, after the panel has gone from
    /// the screen.
    ToastPanel(const ToastMessage& message, QScreen& screen, Surfaces& surfaces,
               std::function<void(ToastPanel*)> closed);
    ~ToastPanel() override;
    ToastPanel(const ToastPanel&) = delete;
    ToastPanel& operator=(const ToastPanel&) = delete;

    /// Shows the panel for that time, after which it fades out, where it can, and closes.
    void showFor(std::chrono::milliseconds duration);

    /// Keeps the panel from the screen, at once, or lets it come back for what is left of its time. One that
    /// fades out already closes.
    void setHeldBack(bool isHeldBack);

    /// The toast itself in global points, without the shadow around it.
    QRect frame() const { return m_layout.frame; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawToast(QPainter& painter) const;

    QString m_icon;
    bool m_isTranslucent;
    std::function<void(ToastPanel*)> m_closed;
    std::unique_ptr<DrawnText> m_title;
    std::unique_ptr<DrawnText> m_subtitle;
    ToastLayout m_layout;
    /// From the window's corner to the toast's.
    int m_margin;
    QTimer m_dismissTimer;
    /// Of a panel that is held back.
    std::optional<std::chrono::milliseconds> m_timeLeft;
    QVariantAnimation m_fade;
    /// What fades out: the whole at once, and not part over part.
    QPixmap m_fadingPicture;
};

} // namespace orvane
