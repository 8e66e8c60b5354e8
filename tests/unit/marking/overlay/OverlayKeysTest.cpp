#include "OrvaneCore/marking/overlay/OverlayKeys.h"

#include <gtest/gtest.h>

#include <map>

namespace orvane {

TEST(OverlayKeys, EachHasItsCommandAndNoOtherKeyHasOne) {
    const std::map<int, OverlayCommand> commands{
        {36, OverlayCommand::submit},        {76, OverlayCommand::submit},
        {53, OverlayCommand::cancel},        {51, OverlayCommand::deleteMark},
        {46, OverlayCommand::toggleMarkup},  {11, OverlayCommand::toggleSpotlight},
        {31, OverlayCommand::toggleOcr},     {34, OverlayCommand::toggleImage},
        {1, OverlayCommand::toggleSend},     {48, OverlayCommand::nextTarget},
        {2, OverlayCommand::nextTarget},     {124, OverlayCommand::nextTarget},
        {0, OverlayCommand::previousTarget}, {123, OverlayCommand::previousTarget},
    };
    for (int code = -1; code <= 256; ++code) {
        const auto command = commands.find(code);
        const auto expected = command == commands.end() ? std::nullopt : std::optional(command->second);
        // Capitals are the same keys, and those of the keypad tell that they are.
        for (const Qt::KeyboardModifier modifier :
             {Qt::NoModifier, Qt::ShiftModifier, Qt::KeypadModifier, Qt::GroupSwitchModifier})
            EXPECT_EQ(overlayCommand(code, modifier), expected) << code << ' ' << modifier;
    }
}

TEST(OverlayKeys, ControlZAloneUndoes) {
    constexpr int letterZ = 6;
    EXPECT_EQ(overlayCommand(letterZ, Qt::ControlModifier), OverlayCommand::deleteMark);
    for (const Qt::KeyboardModifier more : {Qt::ShiftModifier, Qt::AltModifier, Qt::MetaModifier})
        EXPECT_EQ(overlayCommand(letterZ, Qt::ControlModifier | more), std::nullopt) << more;
    for (const Qt::KeyboardModifier other : {Qt::NoModifier, Qt::AltModifier, Qt::MetaModifier})
        EXPECT_EQ(overlayCommand(letterZ, other), std::nullopt) << other;
}

TEST(OverlayKeys, MeanNothingToTheOverlayWithModifiersOfOthers) {
    for (int code = -1; code <= 256; ++code) {
        for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
            if (code != 6) {
                EXPECT_EQ(overlayCommand(code, modifier), std::nullopt) << code << ' ' << modifier;
            }
        }
    }
}

} // namespace orvane
