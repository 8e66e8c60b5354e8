#pragma once

#include "OrvaneCore/marking/overlay/MarkerManager.h"
#include "OrvaneCore/marking/overlay/OverlayBarTexts.h"
#include "OrvaneCore/marking/overlay/OverlayCommand.h"

#include <QIcon>
#include <QRect>
#include <QWidget>

#include <functional>
#include <optional>
#include <utility>

namespace orvane {

class FirstMouseButton;

/// The bar at the bottom of an overlay view: its commands as buttons, whose titles tell the modes. It follows
/// the manager by itself. The mouse over it does not reach the view. Main thread.
class OverlayBar : public QWidget {
public:
    /// The manager outlives the bar. `perform` is called on a click and may end the bar, at best by
    /// deleteLater. `targetIcon` gives an application's icon, or a null icon.
    OverlayBar(MarkerManager& manager, const std::function<void(OverlayCommand)>& perform,
               std::function<QIcon(const SendTarget&)> targetIcon, QWidget* parent);

    /// Where the bar belongs in a view, in points of its parent. It stays there when its titles change.
    void place(const QRect& viewRect);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    class SendHintLabel;

    FirstMouseButton* addButton(const char16_t* name, OverlayCommand command, const QString& tip,
                                const std::function<void(OverlayCommand)>& perform);
    void refresh();
    void showTitles();
    void arrange();
    void dimSubmit();
    QIcon iconOf(const std::optional<SendTarget>& target);

    MarkerManager& m_manager;
    std::function<QIcon(const SendTarget&)> m_targetIcon;
    FirstMouseButton* m_cancelButton;
    FirstMouseButton* m_imageButton;
    FirstMouseButton* m_markupButton;
    FirstMouseButton* m_spotlightButton;
    FirstMouseButton* m_ocrButton;
    FirstMouseButton* m_sendButton;
    SendHintLabel* m_sendHintLabel;
    FirstMouseButton* m_submitButton;
    /// The bar's coordinates.
    QRect m_divider;
    QRect m_viewRect;
    OverlayBarTexts m_texts;
    /// That of the last application, by its bundle id.
    std::optional<std::pair<QString, QIcon>> m_cachedTargetIcon;
    Observers::Subscription m_subscription;
};

} // namespace orvane
