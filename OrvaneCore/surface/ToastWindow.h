#pragma once

#include <QString>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace orvane {

class Surfaces;
class ToastPanel;

/// Short notices at the top of every screen. Each goes by itself after its time; a new one does not wait for
/// an old one. What is still shown goes with this object. Main thread; needs a QApplication that outlives
/// this object.
class ToastWindow {
public:
    /// `surfaces` outlives this object.
    explicit ToastWindow(Surfaces& surfaces);
    ~ToastWindow();
    ToastWindow(const ToastWindow&) = delete;
    ToastWindow& operator=(const ToastWindow&) = delete;

    /// `icon` is the name of a symbol (SymbolGlyphs.h); one that is not known gives no icon. Texts that are
    /// wider than a screen are cut short there. Shows nothing where there is no screen.
    void showRich(const QString& title, const std::optional<QString>& subtitle,
                  const std::optional<QString>& icon, std::chrono::duration<double> duration);
    void show(const QString& title, std::chrono::duration<double> duration);

    /// Those that are on a screen now, the oldest first.
    std::vector<const ToastPanel*> panels() const;

private:
    void remove(ToastPanel* panel);

    Surfaces& m_surfaces;
    std::vector<std::unique_ptr<ToastPanel>> m_panels;
};

} // namespace orvane
