#include "OrvaneCore/marking/overlay/OverlayKeys.h"

#include <gtest/gtest.h>

#include <map>

namespace orvane {

TEST(OverlayKeys, EachHasItsCommandAndNoOtherKeyHasOne) {
    const std::map<int, OverlayCommand> commands{
        {36, OverlayCommand::submit},          {53, OverlayCommand::cancel},
        {51, OverlayCommand::deleteMark},      {46, OverlayCommand::toggleMarkup},
        {11, OverlayCommand::toggleSpotlight}, {31, OverlayCommand::toggleOcr},
        {34, OverlayCommand::toggleImage},     {1, OverlayCommand::toggleSend},
        {48, OverlayCommand::nextTarget},      {2, OverlayCommand::nextTarget},
        {124, OverlayCommand::nextTarget},     {0, OverlayCommand::previousTarget},
        {123, OverlayCommand::previousTarget},
    };
    for (int code = -1; code <= 256; ++code) {
        const auto command = commands.find(code);
        if (command == commands.end()) {
            EXPECT_EQ(overlayCommand(code), std::nullopt) << code;
        } else {
            EXPECT_EQ(overlayCommand(code), command->second) << code;
        }
    }
}

} // namespace orvane
