#include "OrvaneCore/surface/ToastWindow.h"

#include "OrvaneCore/surface/ToastPanel.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace orvane {

struct ToastWindow::Waiting {
    QString title;
    std::optional<QString> subtitle;
    std::optional<QString> icon;
    std::chrono::duration<double> duration;
};

ToastWindow::ToastWindow(Surfaces& surfaces)
    : m_surfaces(surfaces) {}

ToastWindow::~ToastWindow() = default;

void ToastWindow::showRich(const QString& title, const std::optional<QString>& subtitle,
                           const std::optional<QString>& icon, std::chrono::duration<double> duration) {
    if (m_areHeldBack) {
        m_waiting.push_back({.title = title, .subtitle = subtitle, .icon = icon, .duration = duration});
        return;
    }
    const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(duration);
    const ToastMessage message{.title = title, .subtitle = subtitle, .icon = icon};
    const QList<QScreen*> screens = QGuiApplication::screens();
    m_panels.reserve(m_panels.size() + screens.size());
    for (QScreen* screen : screens) {
        m_panels.push_back(std::make_unique<ToastPanel>(message, *screen, m_surfaces,
                                                        [this](ToastPanel* panel) { remove(panel); }));
        m_panels.back()->showFor(time);
    }
}

void ToastWindow::show(const QString& title, std::chrono::duration<double> duration) {
    showRich(title, std::nullopt, std::nullopt, duration);
}

void ToastWindow::setHeldBack(bool areHeldBack) {
    m_areHeldBack = areHeldBack;
    // A panel that is about to go anyway goes in this call.
    std::vector<ToastPanel*> panels;
    panels.reserve(m_panels.size());
    for (const auto& panel : m_panels)
        panels.push_back(panel.get());
    for (ToastPanel* panel : panels)
        panel->setHeldBack(areHeldBack);
    if (areHeldBack)
        return;
    for (const Waiting& toast : std::exchange(m_waiting, {}))
        showRich(toast.title, toast.subtitle, toast.icon, toast.duration);
}

std::vector<const ToastPanel*> ToastWindow::panels() const {
    std::vector<const ToastPanel*> shown;
    shown.reserve(m_panels.size());
    for (const auto& panel : m_panels)
        shown.push_back(panel.get());
    return shown;
}

void ToastWindow::remove(ToastPanel* panel) {
    const auto found = std::find_if(m_panels.begin(), m_panels.end(),
                                    [panel](const auto& candidate) { return candidate.get() == panel; });
    if (found == m_panels.end())
        return;
    // The panel is in the middle of telling us.
    found->release()->deleteLater();
    m_panels.erase(found);
}

} // namespace orvane
