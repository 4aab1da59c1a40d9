#include "theme/ov_icon.h"

#include <algorithm>
#include <utility>

namespace ovrin {

namespace {

struct Asset {
    std::string_view rawValue;
    std::string_view glyph;
};

// In the order of OVIcon::Case.
constexpr std::array<Asset, OVIcon::count> assets{{
    {"OVLucideSearch", "search"},
    {"OVLucideScanText", "scan-text"},
    {"OVLucideLanguages", "languages"},
    {"OVLucideMessageQuestion", "message-circle-question-mark"},
    {"OVLucideCommand", "command"},
    {"OVLucideHistory", "history"},
    {"OVLucideClock", "clock"},
    {"OVLucideSparkles", "sparkles"},
    {"OVLucideCircleAlert", "circle-alert"},
    {"OVLucideRefresh", "refresh-cw"},
    {"OVLucideSettings", "settings"},
    {"OVLucideArrowLeftRight", "arrow-left-right"},
    {"OVLucideClose", "x"},
    {"OVLucideTriangleAlert", "triangle-alert"},
    {"OVLucideArrowUp", "arrow-up"},
    {"OVLucideCopy", "copy"},
    {"OVLucideTrash", "trash-2"},
    {"OVLucideSliders", "sliders-horizontal"},
    {"OVLucideServerCog", "server-cog"},
    {"OVLucideWandSparkles", "wand-sparkles"},
    {"OVLucideInfo", "info"},
    {"OVLucideEye", "eye"},
    {"OVLucideEyeOff", "eye-off"},
    {"OVLucidePlus", "plus"},
    {"OVLucideChevronDown", "chevron-down"},
    {"OVLucideVolume", "volume-2"},
    {"OVLucideImage", "image"},
    {"OVLucideAlignLeft", "text-align-start"},
    {"OVLucidePointer", "text-select"},
    {"OVLucidePanels", "panels-top-left"},
    {"OVLucideClipboard", "clipboard"},
    {"OVLucideCheck", "check"},
}};

constexpr std::array<std::pair<std::string_view, OVIcon::Case>, 35> symbols{{
    {"magnifyingglass", OVIcon::search},
    {"viewfinder", OVIcon::scanText},
    {"rectangle.and.text.magnifyingglass", OVIcon::languages},
    {"character.book.closed", OVIcon::languages},
    {"character.cursor.ibeam", OVIcon::languages},
    {"questionmark.bubble", OVIcon::messageQuestion},
    {"questionmark.circle", OVIcon::messageQuestion},
    {"command", OVIcon::command},
    {"clock.arrow.circlepath", OVIcon::history},
    {"clock", OVIcon::clock},
    {"sparkles", OVIcon::sparkles},
    {"exclamationmark.circle", OVIcon::circleAlert},
    {"arrow.triangle.2.circlepath", OVIcon::refresh},
    {"gearshape", OVIcon::settings},
    {"arrow.left.arrow.right", OVIcon::arrowLeftRight},
    {"xmark", OVIcon::close},
    {"exclamationmark.triangle", OVIcon::triangleAlert},
    {"arrow.up", OVIcon::arrowUp},
    {"doc.on.doc", OVIcon::copy},
    {"trash", OVIcon::trash},
    {"slider.horizontal.3", OVIcon::sliders},
    {"bolt.horizontal.circle", OVIcon::serverCog},
    {"wrench.and.screwdriver", OVIcon::wandSparkles},
    {"info.circle", OVIcon::info},
    {"eye", OVIcon::eye},
    {"eye.slash", OVIcon::eyeOff},
    {"plus", OVIcon::plus},
    {"chevron.down", OVIcon::chevronDown},
    {"speaker.wave.2", OVIcon::volume},
    {"photo", OVIcon::image},
    {"text.alignleft", OVIcon::alignLeft},
    {"selection.pin.in.out", OVIcon::pointer},
    {"rectangle.on.rectangle", OVIcon::panels},
    {"doc.on.clipboard", OVIcon::clipboard},
    {"checkmark", OVIcon::check},
}};

}  // namespace

OVIcon::OVIcon(std::string_view systemSymbol) : case_(sparkles) {
    const auto known = std::ranges::find(symbols, systemSymbol, &std::pair<std::string_view, Case>::first);
    if (known != symbols.end()) case_ = known->second;
}

std::string_view OVIcon::rawValue() const {
    return assets.at(case_).rawValue;
}

std::string_view OVIcon::glyphName() const {
    return assets.at(case_).glyph;
}

}  // namespace ovrin
