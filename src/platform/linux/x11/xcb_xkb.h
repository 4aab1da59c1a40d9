// The XKB requests of XCB. Their header names a member after a keyword of C++, hence the detour.
#pragma once

#define explicit explicit_  // NOLINT
#include <xcb/xkb.h>
#undef explicit
