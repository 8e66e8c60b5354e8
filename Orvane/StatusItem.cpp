#include "Orvane/StatusItem.h"

#include "Orvane/StatusIcon.h"

#include <QAction>
#include <QCursor>
#include <QKeyEvent>
#include <QKeySequence>

#include <algorithm>
#include <chrono>

namespace orvane {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto trayWatchInterval = 3s;

/// Qt shows the shortcuts of a menu that belongs to no window, but they do nothing there.
class KeyMenu : public QMenu {
protected:
    void keyPressEvent(QKeyEvent* event) override {
        const QKeySequence pressed(event->keyCombination());
        const QList<QAction*> rows = actions();
        const auto chosen = std::find_if(rows.begin(), rows.end(), [&pressed](const QAction* row) {
            return row->isEnabled() && !row->shortcut().isEmpty() && row->shortcut() == pressed;
        });
        if (chosen == rows.end()) {
            QMenu::keyPressEvent(event);
            return;
        }
        QAction* action = *chosen;
        hide();
        action->trigger();
    }
};

/// A title as it is: nothing in it marks a mnemonic or begins a shortcut.
QString literalTitle(const QString& title) {
    QString text = title.simplified();
    return text.replace(u"&"_s, u"&&"_s);
}

} // namespace

StatusItem::StatusItem(State state, ActionHandler handler, HasTrayHost hasTrayHost, Surfaces& surfaces,
                       const PlatformWords& words)
    : m_state(std::move(state))
    , m_handler(std::move(handler))
    , m_hasTrayHost(std::move(hasTrayHost))
    , m_surfaces(surfaces)
    , m_words(words)
    , m_menu(std::make_unique<KeyMenu>()) {
    QObject::connect(m_menu.get(), &QMenu::aboutToShow, m_menu.get(), [this] { refreshMenu(); });
    // What changed while the menu was open has waited; a host on D-Bus may not ask before it shows the menu.
    m_menuClosed.setSingleShot(true);
    QObject::connect(m_menu.get(), &QMenu::aboutToHide, &m_menuClosed, [this] { m_menuClosed.start(0ms); });
    QObject::connect(&m_menuClosed, &QTimer::timeout, &m_menuClosed, [this] { update(); });
    update();
    chooseHome();
    QObject::connect(&m_trayWatch, &QTimer::timeout, &m_trayWatch, [this] { chooseHome(); });
    m_trayWatch.start(trayWatchInterval);
}

StatusItem::~StatusItem() = default;

void StatusItem::update() {
    m_isRecording = m_state().isRecording;
    if (m_tray) {
        m_tray->setIcon(status_icon::icon(m_isRecording));
        m_tray->setToolTip(status_icon::description(m_isRecording));
    }
    if (m_pinButton)
        m_pinButton->setRecording(m_isRecording);
    // Rows do not move under the mouse.
    if (!m_menu->isVisible())
        refreshMenu();
}

void StatusItem::setButtonHeldBack(bool isHeldBack) {
    m_isButtonHeldBack = isHeldBack;
    if (m_pinButton)
        m_pinButton->setVisible(!isHeldBack);
}

void StatusItem::chooseHome() {
    // Qt looks for a tray on D-Bus when it is asked for the first time and keeps to what it found: asked too
    // early in a session it would never see such a tray.
    if (m_hasTrayHost() && QSystemTrayIcon::isSystemTrayAvailable()) {
        moveIntoTray();
    } else {
        moveOntoButton();
    }
}

void StatusItem::moveIntoTray() {
    m_pinButton.reset();
    if (isInTray())
        return;
    if (!m_tray) {
        m_tray = std::make_unique<QSystemTrayIcon>();
        m_tray->setContextMenu(m_menu.get());
        QObject::connect(m_tray.get(), &QSystemTrayIcon::activated, m_tray.get(),
                         [this](QSystemTrayIcon::ActivationReason reason) {
                             // The second of two quick clicks is a click too.
                             if (reason != QSystemTrayIcon::Trigger && reason != QSystemTrayIcon::DoubleClick)
                                 return;
                             const QRect icon = m_tray->geometry();
                             m_menu->popup(icon.isValid() ? icon.bottomLeft() : QCursor::pos());
                         });
    }
    m_tray->setIcon(status_icon::icon(m_isRecording));
    m_tray->setToolTip(status_icon::description(m_isRecording));
    m_tray->show();
}

void StatusItem::moveOntoButton() {
    if (m_tray)
        m_tray->hide();
    if (m_pinButton)
        return;
    m_pinButton =
        std::make_unique<PinButton>(m_surfaces, [this](const QPoint& place) { m_menu->popup(place); });
    m_pinButton->setRecording(m_isRecording);
    m_pinButton->setVisible(!m_isButtonHeldBack);
}

void StatusItem::refreshMenu() {
    std::vector<StatusMenuRow> rows = statusMenuRows(m_state(), m_words);
    // Rows that stay as they are keep what a host on D-Bus knows them by.
    if (rows == m_shownRows)
        return;
    fill(*m_menu, rows);
    m_shownRows = std::move(rows);
}

void StatusItem::fill(QMenu& menu, const std::vector<StatusMenuRow>& rows) {
    for (QAction* action : menu.actions()) {
        menu.removeAction(action);
        // Later, since it may be the one that is being handled. A submenu takes its row with it.
        if (action->menu()) {
            action->menu()->deleteLater();
        } else {
            action->deleteLater();
        }
    }
    for (const StatusMenuRow& row : rows)
        menu.addAction(makeAction(menu, row));
}

QAction* StatusItem::makeAction(QMenu& menu, const StatusMenuRow& row) {
    if (!row.submenu.empty()) {
        auto* submenu = new QMenu(literalTitle(row.title), &menu);
        fill(*submenu, row.submenu);
        return submenu->menuAction();
    }
    auto* action = new QAction(literalTitle(row.title), &menu);
    action->setSeparator(row.isSeparator);
    action->setEnabled(row.isEnabled);
    action->setCheckable(row.isChecked);
    action->setChecked(row.isChecked);
    if (!row.keyEquivalent.isEmpty())
        action->setShortcut(QKeySequence(u"Ctrl+"_s + row.keyEquivalent));
    if (row.action) {
        QObject::connect(action, &QAction::triggered, action,
                         [this, action, isChecked = row.isChecked, id = *row.action, payload = row.payload] {
                             // The mark tells of the state and not of clicks.
                             action->setChecked(isChecked);
                             m_handler(id, payload);
                         });
    }
    return action;
}

} // namespace orvane
