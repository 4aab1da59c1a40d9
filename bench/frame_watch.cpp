#include "frame_watch.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

#include "base/error.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Pixels = std::vector<std::uint32_t>;

constexpr int everyRow = 3;                 // that is compared
constexpr std::size_t blinkingShare = 500;  // one part in so many may differ: a caret
constexpr auto rest = 600ms;                // without a change it is over
constexpr auto patience = 10s;

Pixels look(const X11View& view, const PixelArea& area) {
    const X11Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
        view.connection(),
        xcb_get_image(view.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, view.root(), static_cast<std::int16_t>(area.x),
                      static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
                      static_cast<std::uint16_t>(area.height), ~0U),
        nullptr));
    if (!reply) throw Error("the screen cannot be read");
    const auto* const all = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()));
    Pixels pixels;
    for (int row = 0; row < area.height; row += everyRow) {
        const auto* const first = all + static_cast<std::ptrdiff_t>(row) * area.width;
        pixels.insert(pixels.end(), first, first + area.width);
    }
    return pixels;
}

// But for what blinks.
bool isSame(const Pixels& pixels, const Pixels& last) {
    std::size_t different = 0;
    for (std::size_t index = 0; index < last.size(); ++index) different += pixels[index] == last[index] ? 0 : 1;
    return different * blinkingShare <= last.size();
}

}  // namespace

std::chrono::duration<double, std::milli> timeToComplete(const X11View& view, const PixelArea& area,
                                                         const std::function<void()>& action) {
    struct Change {
        Clock::time_point time;
        Pixels pixels;
    };
    std::vector<Change> changes;
    Pixels last = look(view, area);
    const auto begin = Clock::now();
    action();
    while (changes.empty() || Clock::now() - changes.back().time < rest) {
        if (Clock::now() - begin > patience) throw Error("nothing changes there");
        Pixels pixels = look(view, area);
        if (!isSame(pixels, last)) {
            changes.push_back({Clock::now(), pixels});
            last = std::move(pixels);
        }
        // Without any pause the X server and the program would have to share what is left of the machine.
        std::this_thread::sleep_for(1ms);
    }
    const auto complete =
        std::ranges::find_if(changes, [&](const Change& change) { return isSame(change.pixels, last); });
    return complete->time - begin;
}

}  // namespace ovrin
