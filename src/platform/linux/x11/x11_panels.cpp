#include "platform/linux/x11/x11_panels.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "base/error.h"
#include "platform/linux/x11/x11_connection.h"

namespace ovrin {

namespace {

constexpr std::uint32_t longestList = 4096;

struct Atoms {
    xcb_atom_t clientList, windowType, dock;
};

std::vector<std::uint32_t> valuesOf(xcb_connection_t* connection, xcb_get_property_cookie_t question) {
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, question, nullptr));
    if (!reply || reply->format != 32) return {};
    const auto* const values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + reply->value_len};
}

std::optional<PixelRect> frameOf(xcb_connection_t* connection, xcb_window_t window, xcb_window_t root) {
    const auto sizeQuestion = xcb_get_geometry(connection, window);
    const auto placeQuestion = xcb_translate_coordinates(connection, window, root, 0, 0);
    const X11Reply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(connection, sizeQuestion, nullptr));
    const X11Reply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(connection, placeQuestion, nullptr));
    if (!size || !place) return std::nullopt;
    return PixelRect{place->dst_x, place->dst_y, size->width, size->height};
}

std::vector<PixelRect> panelFrames(xcb_connection_t* connection) {
    const Atoms atoms{.clientList = atomNamed(connection, "_NET_CLIENT_LIST"),
                      .windowType = atomNamed(connection, "_NET_WM_WINDOW_TYPE"),
                      .dock = atomNamed(connection, "_NET_WM_WINDOW_TYPE_DOCK")};
    if (atoms.dock == XCB_ATOM_NONE) return {};
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto windows =
        valuesOf(connection, xcb_get_property(connection, 0, root, atoms.clientList, XCB_ATOM_WINDOW, 0, longestList));
    // All questions first, then the answers: one round trip instead of many.
    std::vector<xcb_get_property_cookie_t> questions;
    for (const auto window : windows) {
        questions.push_back(xcb_get_property(connection, 0, window, atoms.windowType, XCB_ATOM_ATOM, 0, 8));
    }
    std::vector<PixelRect> frames;
    for (std::size_t index = 0; index < windows.size(); ++index) {
        const auto types = valuesOf(connection, questions[index]);
        if (std::ranges::find(types, atoms.dock) == types.end()) continue;
        if (const auto frame = frameOf(connection, windows[index], root)) frames.push_back(*frame);
    }
    return frames;
}

// Brightness 0..255 of pixels spread over the picture.
void addSamples(const Image& image, std::vector<int>& samples) {
    constexpr std::size_t step = 7;  // prime to what panels repeat
    const auto count = image.bytesPerRow() * static_cast<std::size_t>(image.height()) / Image::bytesPerPixel;
    const std::span pixels(image.data(), count * Image::bytesPerPixel);
    for (std::size_t pixel = 0; pixel < count; pixel += step) {
        const auto bytes = pixels.subspan(pixel * Image::bytesPerPixel, 3);
        samples.push_back((bytes[0] * 29 + bytes[1] * 150 + bytes[2] * 77) >> 8);
    }
}

}  // namespace

std::optional<theme::Appearance> panelAppearance(xcb_connection_t* connection, X11Screenshot& screenshot) {
    std::vector<int> samples;
    for (const auto& frame : panelFrames(connection)) {
        try {
            addSamples(screenshot.take(frame), samples);
        } catch (const Error&) {
            return std::nullopt;  // without a picture nothing can be told
        }
    }
    if (samples.empty()) return std::nullopt;
    const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::ranges::nth_element(samples, middle);
    constexpr int halfBright = 128;
    return *middle < halfBright ? theme::Appearance::dark : theme::Appearance::light;
}

}  // namespace ovrin
