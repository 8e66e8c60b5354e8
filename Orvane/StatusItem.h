#pragma once

#include "Orvane/PinButton.h"
#include "Orvane/StatusMenu.h"

#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace orvane {

/// The program's place on the desktop: an icon in the tray, or a pin button while the desktop has no tray,
/// with the same menu. Main thread; needs a QApplication that outlives this object, and one that does not
/// quit with its last window.
class StatusItem {
public:
    using State = std::function<StatusMenuState()>;
    using ActionHandler = std::function<void(StatusAction action, const std::optional<QString>& payload)>;
    using HasTrayHost = std::function<bool()>;

    /// `state` is asked each time the menu opens, and by `update`. `hasTrayHost` tells whether any tray is
    /// there now, of whichever kind; it is asked every few seconds. The handler may call `update`. `surfaces`
    /// and `words` outlive this object.
    StatusItem(State state, ActionHandler handler, HasTrayHost hasTrayHost, Surfaces& surfaces,
               const PlatformWords& words);
    ~StatusItem();
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    /// The state has changed: brings the icon, its description and the menu up to date.
    void update();

    /// While it is held back no pin button is on the screen, from the moment of this call on, whether or not
    /// the desktop has a tray. The tray's icon is part of the tray, and stays.
    void setButtonHeldBack(bool isHeldBack);

    /// False when the pin button stands in for the tray.
    bool isInTray() const { return m_tray && m_tray->isVisible(); }

    const QMenu& menu() const { return *m_menu; }
    const QSystemTrayIcon* trayIcon() const { return m_tray.get(); }
    const PinButton* pinButton() const { return m_pinButton.get(); }

private:
    void chooseHome();
    void moveIntoTray();
    void moveOntoButton();
    void refreshMenu();
    void fill(QMenu& menu, const std::vector<StatusMenuRow>& rows);
    QAction* makeAction(QMenu& menu, const StatusMenuRow& row);

    State m_state;
    ActionHandler m_handler;
    HasTrayHost m_hasTrayHost;
    Surfaces& m_surfaces;
    const PlatformWords& m_words;
    bool m_isRecording = false;
    bool m_isButtonHeldBack = false;
    std::vector<StatusMenuRow> m_shownRows;
    // The tray icon goes before the menu that it refers to.
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_tray;
    std::unique_ptr<PinButton> m_pinButton;
    QTimer m_trayWatch;
    QTimer m_menuClosed;
};

} // namespace orvane
