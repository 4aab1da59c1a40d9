// The icon set: line icons that take the colour of the text around them.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace ovrin {

class OVIcon {
public:
    enum Case : std::uint8_t {
        search,
        scanText,
        languages,
        messageQuestion,
        command,
        history,
        clock,
        sparkles,
        circleAlert,
        refresh,
        settings,
        arrowLeftRight,
        close,
        triangleAlert,
        arrowUp,
        copy,
        trash,
        sliders,
        serverCog,
        wandSparkles,
        info,
        eye,
        eyeOff,
        plus,
        chevronDown,
        volume,
        image,
        alignLeft,
        pointer,
        panels,
        clipboard,
        check,
    };
    static constexpr int count = check + 1;

    constexpr OVIcon(Case value) : case_(value) {}  // NOLINT(google-explicit-constructor): a name for the enumerator

    // The icon of a command's or toast's symbol name ("checkmark", "doc.on.doc"); sparkles for an unknown one.
    explicit OVIcon(std::string_view systemSymbol);

    constexpr operator Case() const { return case_; }  // NOLINT(google-explicit-constructor)

    // The name of its image asset, such as "OVLucideSearch".
    std::string_view rawValue() const;

    // The file name, without ending, of the glyph in the line-icon package.
    std::string_view glyphName() const;

private:
    Case case_;
};

}  // namespace ovrin
