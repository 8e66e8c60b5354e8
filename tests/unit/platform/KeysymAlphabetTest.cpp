#include "OrvanePlatform/x11/KeysymAlphabet.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace orvane::x11 {

TEST(KeysymAlphabet, KnowsLatinLetters) {
    for (const xcb_keysym_t letter :
         {XK_a, XK_Z, XK_eacute, XK_ssharp, XK_Lstroke, XK_hstroke, XK_kra, XK_wcircumflex, XK_OE,
          0x01000131 /* dotless i */, 0x01001EA1 /* a with a dot below */})
        EXPECT_EQ(alphabetOf(letter), KeysymAlphabet::latin) << std::hex << letter;
}

TEST(KeysymAlphabet, KnowsThoseOfOtherScripts) {
    for (const xcb_keysym_t letter :
         {XK_Cyrillic_softsign, XK_Greek_mu, XK_hebrew_mem, XK_Arabic_ain, XK_Thai_thothahan, XK_kana_MO,
          XK_Hangul_Ieung, 0x010010D0 /* Georgian an */, 0x01000561 /* Armenian ayb */,
          0x0100FEFB /* lam with alef */, 0x01000915 /* Devanagari ka */,
          0x0100093F /* and its mark for i */})
        EXPECT_EQ(alphabetOf(letter), KeysymAlphabet::other) << std::hex << letter;
}

TEST(KeysymAlphabet, KnowsWhatIsNoLetter) {
    for (const xcb_keysym_t other :
         {0, XK_space, XK_comma, XK_7, XK_mu, XK_multiply, XK_division, XK_EuroSign, XK_dead_acute,
          XK_ISO_Level3_Shift, XK_Return, XK_KP_Enter, XK_VoidSymbol, 0x01000000, 0x0100200D /* a joiner */,
          0x0110FFFF, 0x01110000, 0x7FFFFFFF})
        EXPECT_EQ(alphabetOf(static_cast<xcb_keysym_t>(other)), KeysymAlphabet::none) << std::hex << other;
}

} // namespace orvane::x11
