#pragma once

#include "OrvaneCore/platform/DesktopKeyboard.h"
#include "OrvaneCore/platform/DesktopShell.h"
#include "OrvaneCore/platform/GlobalHotkeys.h"
#include "OrvaneCore/platform/Surfaces.h"

namespace orvane::headless {

/// No keyboard to take keys from.
class NoHotkeys final : public GlobalHotkeys {
public:
    Id add(const Shortcut& /*shortcut*/, Handlers /*handlers*/) override { return ++m_lastId; }
    void remove(Id /*id*/) override {}
    State state(Id /*id*/) const override { return State::unsupported; }

private:
    Id m_lastId = 0;
};

/// No keyboard to have keys.
class NoKeyboard final : public DesktopKeyboard {
public:
    std::optional<int> keyCode(const NativeKey& /*key*/) override { return std::nullopt; }
};

/// No tray.
class NoShell final : public DesktopShell {
public:
    bool hasTrayHost() override { return false; }
    std::optional<QString> limits() override { return std::nullopt; }
};

/// No place for windows: they stay as they are.
class NoSurfaces final : public Surfaces {
public:
    bool canBeTranslucent() override { return false; }
    void dress(QWidget& /*window*/, SurfaceRole /*role*/, SurfaceKeyboard /*keyboard*/,
               QScreen& /*screen*/) override {}
    void setClickThrough(QWidget& /*window*/, bool /*isClickThrough*/) override {}
    void takeKeyboard(QWidget& /*window*/) override {}
    void giveKeyboardBack() override {}
};

} // namespace orvane::headless
