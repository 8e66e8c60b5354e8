#pragma once

#include "OrvaneCore/platform/DesktopKeyboard.h"
#include "OrvaneCore/platform/DesktopShell.h"
#include "OrvaneCore/platform/GlobalHotkeys.h"

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

/// No keyboard to give to windows.
class NoKeyboard final : public DesktopKeyboard {
public:
    void give(quintptr /*window*/) override {}
    void giveBack() override {}
    std::optional<int> keyCode(quint32 /*nativeScanCode*/) const override { return std::nullopt; }
};

/// No place for windows.
class NoShell final : public DesktopShell {
public:
    bool isComposited() override { return false; }
    bool hasTrayHost() override { return false; }
    std::optional<QString> limits() override { return std::nullopt; }
};

} // namespace orvane::headless
