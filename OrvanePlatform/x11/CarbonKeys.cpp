#include "OrvanePlatform/x11/CarbonKeys.h"

#include <algorithm>
#include <array>

#include <X11/keysym.h>

namespace orvane::x11 {

namespace {

// The order is that of the codes: the lookup is a binary search.
constexpr std::array carbonKeys{
    CarbonKey{0, XK_a, 38},           CarbonKey{1, XK_s, 39},           CarbonKey{2, XK_d, 40},
    CarbonKey{3, XK_f, 41},           CarbonKey{4, XK_h, 43},           CarbonKey{5, XK_g, 42},
    CarbonKey{6, XK_z, 52},           CarbonKey{7, XK_x, 53},           CarbonKey{8, XK_c, 54},
    CarbonKey{9, XK_v, 55},           CarbonKey{11, XK_b, 56},          CarbonKey{12, XK_q, 24},
    CarbonKey{13, XK_w, 25},          CarbonKey{14, XK_e, 26},          CarbonKey{15, XK_r, 27},
    CarbonKey{16, XK_y, 29},          CarbonKey{17, XK_t, 28},          CarbonKey{18, XK_1, 10},
    CarbonKey{19, XK_2, 11},          CarbonKey{20, XK_3, 12},          CarbonKey{21, XK_4, 13},
    CarbonKey{22, XK_6, 15},          CarbonKey{23, XK_5, 14},          CarbonKey{24, XK_equal, 21},
    CarbonKey{25, XK_9, 18},          CarbonKey{26, XK_7, 16},          CarbonKey{27, XK_minus, 20},
    CarbonKey{28, XK_8, 17},          CarbonKey{29, XK_0, 19},          CarbonKey{30, XK_bracketright, 35},
    CarbonKey{31, XK_o, 32},          CarbonKey{32, XK_u, 30},          CarbonKey{33, XK_bracketleft, 34},
    CarbonKey{34, XK_i, 31},          CarbonKey{35, XK_p, 33},          CarbonKey{36, XK_Return, 0},
    CarbonKey{37, XK_l, 46},          CarbonKey{38, XK_j, 44},          CarbonKey{39, XK_apostrophe, 48},
    CarbonKey{40, XK_k, 45},          CarbonKey{41, XK_semicolon, 47},  CarbonKey{42, XK_backslash, 51},
    CarbonKey{43, XK_comma, 59},      CarbonKey{44, XK_slash, 61},      CarbonKey{45, XK_n, 57},
    CarbonKey{46, XK_m, 58},          CarbonKey{47, XK_period, 60},     CarbonKey{48, XK_Tab, 0},
    CarbonKey{49, XK_space, 0},       CarbonKey{50, XK_grave, 49},      CarbonKey{51, XK_BackSpace, 0},
    CarbonKey{53, XK_Escape, 0},      CarbonKey{64, XK_F17, 0},         CarbonKey{65, XK_KP_Decimal, 91},
    CarbonKey{67, XK_KP_Multiply, 0}, CarbonKey{69, XK_KP_Add, 0},      CarbonKey{75, XK_KP_Divide, 0},
    CarbonKey{76, XK_KP_Enter, 0},    CarbonKey{78, XK_KP_Subtract, 0}, CarbonKey{79, XK_F18, 0},
    CarbonKey{80, XK_F19, 0},         CarbonKey{81, XK_KP_Equal, 0},    CarbonKey{82, XK_KP_0, 0},
    CarbonKey{83, XK_KP_1, 0},        CarbonKey{84, XK_KP_2, 0},        CarbonKey{85, XK_KP_3, 0},
    CarbonKey{86, XK_KP_4, 0},        CarbonKey{87, XK_KP_5, 0},        CarbonKey{88, XK_KP_6, 0},
    CarbonKey{89, XK_KP_7, 0},        CarbonKey{90, XK_F20, 0},         CarbonKey{91, XK_KP_8, 0},
    CarbonKey{92, XK_KP_9, 0},        CarbonKey{96, XK_F5, 0},          CarbonKey{97, XK_F6, 0},
    CarbonKey{98, XK_F7, 0},          CarbonKey{99, XK_F3, 0},          CarbonKey{100, XK_F8, 0},
    CarbonKey{101, XK_F9, 0},         CarbonKey{103, XK_F11, 0},        CarbonKey{105, XK_F13, 0},
    CarbonKey{106, XK_F16, 0},        CarbonKey{107, XK_F14, 0},        CarbonKey{109, XK_F10, 0},
    CarbonKey{111, XK_F12, 0},        CarbonKey{113, XK_F15, 0},        CarbonKey{114, XK_Insert, 0},
    CarbonKey{115, XK_Home, 0},       CarbonKey{116, XK_Prior, 0},      CarbonKey{117, XK_Delete, 0},
    CarbonKey{118, XK_F4, 0},         CarbonKey{119, XK_End, 0},        CarbonKey{120, XK_F2, 0},
    CarbonKey{121, XK_Next, 0},       CarbonKey{122, XK_F1, 0},         CarbonKey{123, XK_Left, 0},
    CarbonKey{124, XK_Right, 0},      CarbonKey{125, XK_Down, 0},       CarbonKey{126, XK_Up, 0},
};

} // namespace

const CarbonKey* carbonKey(int carbonKeyCode) {
    const auto* const found =
        std::lower_bound(carbonKeys.begin(), carbonKeys.end(), carbonKeyCode,
                         [](const CarbonKey& key, int code) { return key.carbonKeyCode < code; });
    return found != carbonKeys.end() && found->carbonKeyCode == carbonKeyCode ? found : nullptr;
}

std::optional<int> carbonKeyCodeOf(xcb_keysym_t keysym) {
    if (keysym < XK_space || keysym > XK_asciitilde)
        return std::nullopt;
    const bool isCapital = keysym >= XK_A && keysym <= XK_Z;
    const auto* const found = std::find_if(carbonKeys.begin(), carbonKeys.end(),
                                           [plain = isCapital ? keysym - XK_A + XK_a : keysym](
                                               const CarbonKey& key) { return key.keysym == plain; });
    return found == carbonKeys.end() ? std::nullopt : std::optional(found->carbonKeyCode);
}

std::optional<int> carbonKeyCodeAt(quint32 keycode) {
    const auto* const found =
        std::find_if(carbonKeys.begin(), carbonKeys.end(),
                     [keycode](const CarbonKey& key) { return keycode != 0 && key.usKeycode == keycode; });
    return found == carbonKeys.end() ? std::nullopt : std::optional(found->carbonKeyCode);
}

} // namespace orvane::x11
