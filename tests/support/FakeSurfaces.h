#pragma once

#include "OrvaneCore/platform/Surfaces.h"

#include <QPointer>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <vector>

namespace orvane::test {

/// Records what windows are dressed for and what is asked for them; the windows themselves stay as they are.
class FakeSurfaces final : public Surfaces {
public:
    struct Dressed {
        QPointer<QWidget> window;
        SurfaceRole role;
        SurfaceKeyboard keyboard;
        QPointer<QScreen> screen;
        bool isClickThrough;
    };

    bool translucent = true;
    /// In the order in which they were dressed; those that are gone have a null window.
    std::vector<Dressed> windows;
    /// Who asked for the keyboard, the last one last, since it was given back.
    std::vector<QPointer<QWidget>> keyboardTakers;
    int timesGivenBack = 0;

    bool canBeTranslucent() override { return translucent; }

    void dress(QWidget& window, SurfaceRole role, SurfaceKeyboard keyboard, QScreen& screen) override {
        if (find(window) || window.isVisible())
            qFatal("a window is dressed once, before it is shown");
        const bool isClickThrough = role == SurfaceRole::chrome || role == SurfaceRole::toast;
        windows.push_back({&window, role, keyboard, &screen, isClickThrough});
    }

    void setClickThrough(QWidget& window, bool isClickThrough) override {
        known(window).isClickThrough = isClickThrough;
    }

    void takeKeyboard(QWidget& window) override {
        if (known(window).keyboard != SurfaceKeyboard::never)
            keyboardTakers.emplace_back(&window);
    }

    void giveKeyboardBack() override {
        keyboardTakers.clear();
        ++timesGivenBack;
    }

    /// Null for a window that was not dressed.
    Dressed* find(const QWidget& window) {
        const auto found = std::find_if(windows.begin(), windows.end(), [&window](const Dressed& dressed) {
            return dressed.window == &window;
        });
        return found == windows.end() ? nullptr : &*found;
    }

private:
    Dressed& known(const QWidget& window) {
        Dressed* dressed = find(window);
        if (!dressed)
            qFatal("the window was not dressed");
        return *dressed;
    }
};

} // namespace orvane::test
