#pragma once

// The XKB requests. Their header, written for C, names a member with a word that C++ keeps for itself.
#define explicit explicitParts // NOLINT
#include <xcb/xkb.h>
#undef explicit
