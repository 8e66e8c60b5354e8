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

    /// While they are held back no notice is on a screen, from the moment of this call on. Those that were
    /// have what is left of their time afterwards, and those that come meanwhile all of theirs.
    void setHeldBack(bool areHeldBack);

    /// Those that have been shown and not gone yet, the oldest first.
    std::vector<const ToastPanel*> panels() const;

private:
    void remove(ToastPanel* panel);

    struct Waiting;

    Surfaces& m_surfaces;
    std::vector<std::unique_ptr<ToastPanel>> m_panels;
    bool m_areHeldBack = false;
    /// Those that have come while they are held back.
    std::vector<Waiting> m_waiting;
};

} // namespace orvane
