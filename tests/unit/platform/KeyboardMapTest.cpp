#include "OrvanePlatform/x11/KeyboardMap.h"

#include "OrvanePlatform/x11/CarbonKeys.h"
#include "tests/support/MacWords.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <set>

#include <X11/keysym.h>

namespace orvane::test {

using namespace Qt::StringLiterals;
using x11::KeyboardMap;
using x11::KeyCombination;

namespace {

constexpr int commandControl = Shortcut::command | Shortcut::control;
constexpr std::uint16_t superControl = XCB_MOD_MASK_4 | XCB_MOD_MASK_CONTROL;

constexpr xcb_keycode_t controlKey = 37;
constexpr xcb_keycode_t shiftKey = 50;
constexpr xcb_keycode_t altKey = 64;
constexpr xcb_keycode_t capsKey = 66;
constexpr xcb_keycode_t numLockKey = 77;
constexpr xcb_keycode_t scrollLockKey = 78;
constexpr xcb_keycode_t superKey = 133;

/// A keyboard with the usual modifiers; letters are put on it by the tests.
struct Keyboard {
    std::map<xcb_keycode_t, std::vector<xcb_keysym_t>> keys{
        {controlKey, {XK_Control_L}},
        {shiftKey, {XK_Shift_L}},
        {altKey, {XK_Alt_L, XK_Meta_L}},
        {capsKey, {XK_Caps_Lock}},
        {numLockKey, {XK_Num_Lock}},
        {scrollLockKey, {XK_Scroll_Lock}},
        {superKey, {XK_VoidSymbol, XK_Super_L}},
    };
    /// For Shift, Lock, Control and Mod1 to Mod5.
    std::array<std::vector<xcb_keycode_t>, 8> modifiers{
        {{shiftKey}, {capsKey}, {controlKey}, {altKey}, {numLockKey}, {}, {superKey}, {}}};

    KeyboardMap map() const {
        constexpr xcb_keycode_t first = 8;
        constexpr std::size_t columns = 6;
        std::vector<xcb_keysym_t> keysyms((256 - first) * columns);
        for (const auto& [keycode, symbols] : keys)
            std::copy(symbols.begin(), symbols.end(), keysyms.begin() + (keycode - first) * columns);
        std::vector<xcb_keycode_t> places;
        places.reserve(16);
        for (const auto& held : modifiers) {
            places.push_back(0);
            places.push_back(held.empty() ? xcb_keycode_t(0) : held.front());
        }
        return {first, columns, keysyms, places};
    }

    /// The keys that give Super+Ctrl and a Carbon key.
    std::vector<xcb_keycode_t> keycodes(int carbonKeyCode) const {
        std::vector<xcb_keycode_t> found;
        found.reserve(2);
        for (const KeyCombination& combination :
             map().keysFor({carbonKeyCode, commandControl}).combinations) {
            EXPECT_EQ(combination.modifiers, superControl);
            found.push_back(combination.keycode);
        }
        return found;
    }
};

using Keycodes = std::vector<xcb_keycode_t>;

constexpr int carbonA = 0;
constexpr int carbonP = 35;
constexpr int carbonBracket = 33;
constexpr int carbonReturn = 36;
constexpr int carbonKeypad1 = 83;

} // namespace

TEST(KeyboardMap, FindsEveryKeyOfTheFirstLayoutThatGivesTheLetter) {
    Keyboard keyboard;
    keyboard.keys[33] = {XK_p, XK_P, XK_Cyrillic_ze, XK_Cyrillic_ZE};
    keyboard.keys[90] = {XK_p, XK_P};
    keyboard.keys[40] = {XK_Cyrillic_ve, XK_Cyrillic_VE, XK_p, XK_P};
    EXPECT_EQ(keyboard.keycodes(carbonP), (Keycodes{33, 90}));
}

TEST(KeyboardMap, FollowsALayoutThatMovesTheLetter) {
    Keyboard keyboard;
    keyboard.keys[24] = {XK_a, XK_A};
    keyboard.keys[38] = {XK_q, XK_Q};
    EXPECT_EQ(keyboard.keycodes(carbonA), Keycodes{24});
}

TEST(KeyboardMap, TakesTheSecondLayoutWhereTheFirstHasAnotherAlphabet) {
    Keyboard keyboard;
    keyboard.keys[33] = {XK_Cyrillic_ze, XK_Cyrillic_ZE, XK_r, XK_R};
    keyboard.keys[27] = {XK_Cyrillic_ka, XK_Cyrillic_KA, XK_p, XK_P};
    EXPECT_EQ(keyboard.keycodes(carbonP), Keycodes{27});
}

TEST(KeyboardMap, KeepsThePlaceOfAUsKeyboardWhereNoLayoutHasTheLetter) {
    Keyboard keyboard;
    keyboard.keys[33] = {XK_Cyrillic_ze, XK_Cyrillic_ZE};
    EXPECT_EQ(keyboard.keycodes(carbonP), Keycodes{33});
    EXPECT_EQ(keyboard.keycodes(carbonA), Keycodes{38});
}

TEST(KeyboardMap, DoesNotTakeACharacterOfAltGr) {
    Keyboard keyboard;
    keyboard.keys[17] = {XK_8, XK_parenleft, XK_8, XK_parenleft, XK_bracketleft};
    EXPECT_EQ(keyboard.keycodes(carbonBracket), Keycodes{34});
}

TEST(KeyboardMap, FindsADigitThatTakesShift) {
    Keyboard keyboard;
    keyboard.keys[10] = {XK_ampersand, XK_1};
    EXPECT_EQ(keyboard.keycodes(18), Keycodes{10});
}

TEST(KeyboardMap, FindsKeypadDigits) {
    Keyboard keyboard;
    keyboard.keys[87] = {XK_KP_End, XK_KP_1};
    EXPECT_EQ(keyboard.keycodes(carbonKeypad1), Keycodes{87});
}

TEST(KeyboardMap, NeedsAKeyThatIsThere) {
    const auto missing = Keyboard().map().keysFor({carbonReturn, commandControl});
    EXPECT_TRUE(missing.combinations.empty());
    EXPECT_EQ(missing.problem, u"this keyboard has no such key"_s);
    const auto unknown = Keyboard().map().keysFor({10000, commandControl});
    EXPECT_TRUE(unknown.combinations.empty());
    EXPECT_EQ(unknown.problem, u"there is no such key"_s);
}

TEST(KeyboardMap, NeedsItsModifiers) {
    Keyboard keyboard;
    keyboard.modifiers[6].clear();
    const auto lacking = keyboard.map().keysFor({carbonP, commandControl});
    EXPECT_TRUE(lacking.combinations.empty());
    EXPECT_EQ(lacking.problem, u"this keyboard lacks one of its modifiers"_s);
    EXPECT_FALSE(keyboard.map().keysFor({carbonP, Shortcut::control}).combinations.empty());
    const auto unknown = Keyboard().map().keysFor({carbonP, 65536 | Shortcut::control});
    EXPECT_TRUE(unknown.combinations.empty());
    EXPECT_EQ(unknown.problem, u"there is no such modifier"_s);
}

TEST(KeyboardMap, TranslatesEachModifier) {
    const std::map<int, std::uint16_t> masks{{0, 0},
                                             {Shortcut::command, XCB_MOD_MASK_4},
                                             {Shortcut::control, XCB_MOD_MASK_CONTROL},
                                             {Shortcut::option, XCB_MOD_MASK_1},
                                             {Shortcut::shift, XCB_MOD_MASK_SHIFT}};
    for (const auto& [carbon, mask] : masks) {
        EXPECT_EQ(Keyboard().map().keysFor({carbonP, carbon}).combinations,
                  (std::vector<KeyCombination>{{33, mask}}));
    }
}

TEST(KeyboardMap, FindsModifiersWhereverTheyAre) {
    Keyboard keyboard;
    std::swap(keyboard.modifiers[3], keyboard.modifiers[6]);
    EXPECT_EQ(keyboard.map().keysFor({carbonP, Shortcut::command}).combinations,
              (std::vector<KeyCombination>{{33, XCB_MOD_MASK_1}}));
}

TEST(KeyboardMap, MakesAVariantOfEachStateOfTheLocks) {
    Keyboard keyboard;
    EXPECT_EQ(keyboard.map().lockVariants({33, superControl}),
              (std::set<KeyCombination>{{33, superControl},
                                        {33, superControl | XCB_MOD_MASK_LOCK},
                                        {33, superControl | XCB_MOD_MASK_2},
                                        {33, superControl | XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2}}));
    keyboard.modifiers[4].clear();
    EXPECT_EQ(keyboard.map().lockVariants({33, superControl}).size(), 2U);
    keyboard.modifiers[5] = {numLockKey};
    keyboard.modifiers[7] = {scrollLockKey};
    const auto variants = keyboard.map().lockVariants({33, superControl});
    EXPECT_EQ(variants.size(), 8U);
    EXPECT_TRUE(variants.contains({33, superControl | XCB_MOD_MASK_LOCK | XCB_MOD_MASK_3 | XCB_MOD_MASK_5}));
}

TEST(KeyboardMap, TakesLocksAndPointerButtonsOffAnEventsModifiers) {
    const std::uint16_t group2 = 1U << 13;
    EXPECT_EQ(Keyboard().map().withoutLocks(superControl | XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2 |
                                            XCB_BUTTON_MASK_1 | group2),
              superControl);
    EXPECT_EQ(Keyboard().map().withoutLocks(superControl | XCB_MOD_MASK_SHIFT),
              superControl | XCB_MOD_MASK_SHIFT);
}

TEST(KeyboardMap, KeepsAModifierThatSharesItsPlaceWithALock) {
    Keyboard keyboard;
    keyboard.modifiers[4] = {superKey};
    keyboard.modifiers[6].clear();
    keyboard.keys[superKey] = {XK_Super_L, XK_Num_Lock};
    EXPECT_EQ(keyboard.map().withoutLocks(XCB_MOD_MASK_2 | XCB_MOD_MASK_LOCK), XCB_MOD_MASK_2);
}

TEST(KeyboardMap, OfAKeyboardWithoutKeysHasNoHotkeys) {
    const KeyboardMap empty(8, 0, {}, {});
    EXPECT_TRUE(empty.keysFor({carbonP, Shortcut::control}).combinations.empty());
}

TEST(CarbonKeys, AreFoundByTheirCodes) {
    const std::map<int, xcb_keysym_t> some{
        {0, XK_a},        {2, XK_d},       {4, XK_h},      {15, XK_r},         {35, XK_p},
        {29, XK_0},       {23, XK_5},      {22, XK_6},     {24, XK_equal},     {50, XK_grave},
        {36, XK_Return},  {48, XK_Tab},    {49, XK_space}, {51, XK_BackSpace}, {53, XK_Escape},
        {117, XK_Delete}, {115, XK_Home},  {119, XK_End},  {116, XK_Page_Up},  {121, XK_Page_Down},
        {123, XK_Left},   {124, XK_Right}, {125, XK_Down}, {126, XK_Up},       {122, XK_F1},
        {111, XK_F12},    {90, XK_F20},    {82, XK_KP_0},  {92, XK_KP_9},      {76, XK_KP_Enter}};
    for (const auto& [code, keysym] : some) {
        ASSERT_NE(x11::carbonKey(code), nullptr) << code;
        EXPECT_EQ(x11::carbonKey(code)->keysym, keysym) << code;
    }
    for (const int code : {-1, 10, 52, 55, 127, 1000})
        EXPECT_EQ(x11::carbonKey(code), nullptr) << code;
}

TEST(CarbonKeys, AreFoundByTheirPlaces) {
    // As the kernel numbers the keys of a US keyboard (KEY_M is 50 and so on), 8 added.
    const std::map<quint32, int> some{{58, 46}, {56, 11}, {32, 31}, {31, 34}, {39, 1}, {40, 2}, {38, 0}};
    for (const auto& [keycode, code] : some)
        EXPECT_EQ(x11::carbonKeyCodeAt(keycode), code) << keycode;
    for (const quint32 keycode : {0U, 9U, 36U, 255U, 0xFFFFFFFFU})
        EXPECT_EQ(x11::carbonKeyCodeAt(keycode), std::nullopt) << keycode;
}

TEST(CarbonKeys, AreAllDifferentAndHaveNames) {
    std::set<xcb_keysym_t> keysyms;
    std::set<xcb_keycode_t> places;
    int keys = 0;
    int placed = 0;
    for (int code = 0; code < 128; ++code) {
        const x11::CarbonKey* const key = x11::carbonKey(code);
        EXPECT_EQ(key == nullptr, macWords().hotkeyName({code, 0}).startsWith(u"key ")) << code;
        if (key == nullptr)
            continue;
        ++keys;
        keysyms.insert(key->keysym);
        if (key->usKeycode != 0) {
            ++placed;
            places.insert(key->usKeycode);
        }
    }
    // 26 letters, 10 digits, 11 signs; the keypad's decimal sign, which has many symbols.
    EXPECT_EQ(placed, 48);
    EXPECT_EQ(places.size(), 48U);
    // Besides: 20 function keys, 16 more of the keypad, 4 arrows, 11 others.
    EXPECT_EQ(keys, 99);
    EXPECT_EQ(keysyms.size(), 99U);
}

TEST(KeyboardMap, TellsLayoutsOfLatinLettersFromOthers) {
    Keyboard keyboard;
    keyboard.keys.insert({{24, {XK_a, XK_A, XK_Cyrillic_shorti, XK_Cyrillic_SHORTI}},
                          {25, {XK_z, XK_Z, XK_Cyrillic_tse, XK_Cyrillic_TSE}},
                          {26, {XK_comma, XK_question, XK_comma, XK_question}}});
    EXPECT_TRUE(keyboard.map().hasLatinLetters(0));
    EXPECT_FALSE(keyboard.map().hasLatinLetters(1));
    for (const std::size_t unknown : {2, 3, 1000})
        EXPECT_TRUE(keyboard.map().hasLatinLetters(unknown));
    // One letter of the other alphabet does not make it.
    keyboard.keys.insert({27, {XK_Greek_mu, XK_Greek_MU, XK_z, XK_Z}});
    EXPECT_TRUE(keyboard.map().hasLatinLetters(0));
    EXPECT_FALSE(keyboard.map().hasLatinLetters(1));
    EXPECT_TRUE(KeyboardMap(8, 1, {XK_Greek_mu}, {}).hasLatinLetters(1));
    EXPECT_FALSE(KeyboardMap(8, 1, {XK_Greek_mu}, {}).hasLatinLetters(0));
    EXPECT_TRUE(KeyboardMap(8, 0, {}, {}).hasLatinLetters(0));
}

TEST(CarbonKeys, AreFoundByTheirCharacterOnAUsKeyboard) {
    EXPECT_EQ(x11::carbonKeyCodeOf(XK_m), 46);
    EXPECT_EQ(x11::carbonKeyCodeOf(XK_M), 46);
    EXPECT_EQ(x11::carbonKeyCodeOf(XK_a), 0);
    EXPECT_EQ(x11::carbonKeyCodeOf(XK_z), 6);
    EXPECT_EQ(x11::carbonKeyCodeOf(XK_comma), 43);
    EXPECT_EQ(x11::carbonKeyCodeOf(XK_1), 18);
    for (const xcb_keysym_t none :
         {0, XK_eacute, XK_Cyrillic_softsign, XK_Return, XK_KP_1, XK_at, 0x0100006D})
        EXPECT_EQ(x11::carbonKeyCodeOf(none), std::nullopt) << none;
}

} // namespace orvane::test
