#include "platform/linux/desktop/virtual_keys.h"

#include <algorithm>

namespace ovrin {

namespace {

constexpr auto table = std::to_array<VirtualKey>({
    {{0}, {{"AC01"}}},
    {{1}, {{"AC02"}}},
    {{2}, {{"AC03"}}},
    {{3}, {{"AC04"}}},
    {{4}, {{"AC06"}}},
    {{5}, {{"AC05"}}},
    {{6}, {{"AB01"}}},
    {{7}, {{"AB02"}}},
    {{8}, {{"AB03"}}},
    {{9}, {{"AB04"}}},
    {{10}, {{"LSGT"}}},
    {{11}, {{"AB05"}}},
    {{12}, {{"AD01"}}},
    {{13}, {{"AD02"}}},
    {{14}, {{"AD03"}}},
    {{15}, {{"AD04"}}},
    {{16}, {{"AD06"}}},
    {{17}, {{"AD05"}}},
    {{18}, {{"AE01"}}},
    {{19}, {{"AE02"}}},
    {{20}, {{"AE03"}}},
    {{21}, {{"AE04"}}},
    {{22}, {{"AE06"}}},
    {{23}, {{"AE05"}}},
    {{24}, {{"AE12"}}},
    {{25}, {{"AE09"}}},
    {{26}, {{"AE07"}}},
    {{27}, {{"AE11"}}},
    {{28}, {{"AE08"}}},
    {{29}, {{"AE10"}}},
    {{30}, {{"AD12"}}},
    {{31}, {{"AD09"}}},
    {{32}, {{"AD07"}}},
    {{33}, {{"AD11"}}},
    {{34}, {{"AD08"}}},
    {{35}, {{"AD10"}}},
    {{36}, {{"RTRN"}}, XKB_KEY_Return},
    {{37}, {{"AC09"}}},
    {{38}, {{"AC07"}}},
    {{39}, {{"AC11"}}},
    {{40}, {{"AC08"}}},
    {{41}, {{"AC10"}}},
    {{42}, {{"BKSL"}}},
    {{43}, {{"AB08"}}},
    {{44}, {{"AB10"}}},
    {{45}, {{"AB06"}}},
    {{46}, {{"AB07"}}},
    {{47}, {{"AB09"}}},
    {{48}, {{"TAB"}}, XKB_KEY_Tab},
    {{49}, {{"SPCE"}}, XKB_KEY_space},
    {{50}, {{"TLDE"}}},
    {{51}, {{"BKSP"}}, XKB_KEY_BackSpace},
    {{53}, {{"ESC"}}, XKB_KEY_Escape},
    {{64}, {{"FK17"}}, XKB_KEY_F17},
    {{65}, {{"KPDL"}}, XKB_KEY_KP_Decimal},
    {{67}, {{"KPMU"}}, XKB_KEY_KP_Multiply},
    {{69}, {{"KPAD"}}, XKB_KEY_KP_Add},
    {{71}, {{"NMLK"}}, XKB_KEY_Num_Lock},
    {{75}, {{"KPDV"}}, XKB_KEY_KP_Divide},
    {{76}, {{"KPEN"}}, XKB_KEY_KP_Enter},
    {{78}, {{"KPSU"}}, XKB_KEY_KP_Subtract},
    {{79}, {{"FK18"}}, XKB_KEY_F18},
    {{80}, {{"FK19"}}, XKB_KEY_F19},
    {{81}, {{"KPEQ"}}, XKB_KEY_KP_Equal},
    {{82}, {{"KP0"}}, XKB_KEY_KP_0},
    {{83}, {{"KP1"}}, XKB_KEY_KP_1},
    {{84}, {{"KP2"}}, XKB_KEY_KP_2},
    {{85}, {{"KP3"}}, XKB_KEY_KP_3},
    {{86}, {{"KP4"}}, XKB_KEY_KP_4},
    {{87}, {{"KP5"}}, XKB_KEY_KP_5},
    {{88}, {{"KP6"}}, XKB_KEY_KP_6},
    {{89}, {{"KP7"}}, XKB_KEY_KP_7},
    {{90}, {{"FK20"}}, XKB_KEY_F20},
    {{91}, {{"KP8"}}, XKB_KEY_KP_8},
    {{92}, {{"KP9"}}, XKB_KEY_KP_9},
    {{93}, {{"AE13"}}},
    {{94}, {{"AB11"}}},
    {{96}, {{"FK05"}}, XKB_KEY_F5},
    {{97}, {{"FK06"}}, XKB_KEY_F6},
    {{98}, {{"FK07"}}, XKB_KEY_F7},
    {{99}, {{"FK03"}}, XKB_KEY_F3},
    {{100}, {{"FK08"}}, XKB_KEY_F8},
    {{101}, {{"FK09"}}, XKB_KEY_F9},
    {{103}, {{"FK11"}}, XKB_KEY_F11},
    {{105}, {{"FK13", "PRSC"}}, XKB_KEY_F13},
    {{106}, {{"FK16"}}, XKB_KEY_F16},
    {{107}, {{"FK14", "SCLK"}}, XKB_KEY_F14},
    {{109}, {{"FK10"}}, XKB_KEY_F10},
    {{111}, {{"FK12"}}, XKB_KEY_F12},
    {{113}, {{"FK15", "PAUS"}}, XKB_KEY_F15},
    {{114}, {{"HELP", "INS"}}, XKB_KEY_Help},
    {{115}, {{"HOME"}}, XKB_KEY_Home},
    {{116}, {{"PGUP"}}, XKB_KEY_Page_Up},
    {{117}, {{"DELE"}}, XKB_KEY_Delete},
    {{118}, {{"FK04"}}, XKB_KEY_F4},
    {{119}, {{"END"}}, XKB_KEY_End},
    {{120}, {{"FK02"}}, XKB_KEY_F2},
    {{121}, {{"PGDN"}}, XKB_KEY_Page_Down},
    {{122}, {{"FK01"}}, XKB_KEY_F1},
    {{123}, {{"LEFT"}}, XKB_KEY_Left},
    {{124}, {{"RGHT"}}, XKB_KEY_Right},
    {{125}, {{"DOWN"}}, XKB_KEY_Down},
    {{126}, {{"UP"}}, XKB_KEY_Up},
});

}  // namespace

std::span<const VirtualKey> virtualKeys() {
    return table;
}

std::optional<KeyboardShortcuts::Key> keyOfSpecialKeysym(xkb_keysym_t keysym) {
    switch (keysym) {
        case XKB_KEY_ISO_Left_Tab:
            keysym = XKB_KEY_Tab;
            break;
        case XKB_KEY_Insert:
            keysym = XKB_KEY_Help;
            break;
        case XKB_KEY_Print:
            keysym = XKB_KEY_F13;
            break;
        case XKB_KEY_Scroll_Lock:
            keysym = XKB_KEY_F14;
            break;
        case XKB_KEY_Pause:
            keysym = XKB_KEY_F15;
            break;
        default:
            break;
    }
    const auto* const found =
        std::find_if(table.begin(), table.end(), [&](const auto& entry) { return entry.specialKeysym == keysym; });
    if (keysym == XKB_KEY_NoSymbol || found == table.end()) return std::nullopt;
    return found->key;
}

}  // namespace ovrin
