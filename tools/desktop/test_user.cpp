#include "desktop/test_user.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include <xcb/xfixes.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon.h>

#include "base/error.h"
#include "base/text.h"

namespace ovrin {
namespace {

constexpr const char* clipboard = "CLIPBOARD";
constexpr int dragSteps = 16;

template <typename Reply>
X11Reply<Reply> owned(Reply* reply) {
    return X11Reply<Reply>(reply);
}

}  // namespace

bool WindowLook::fits(const DesktopWindow& window) const {
    const bool isOfProgram = program.empty() || text::equalsIgnoringAsciiCase(program, window.instance) ||
                             text::equalsIgnoringAsciiCase(program, window.className);
    return isOfProgram && (title.empty() || title == window.title) && (type.empty() || type == window.type) &&
           (width == 0 || width == window.area.width) && (height == 0 || height == window.area.height);
}

std::string WindowLook::description() const {
    std::string text = "a window";
    if (!title.empty()) text += " titled " + title;
    if (!program.empty()) text += " of " + program;
    if (!type.empty()) text += " of type " + type;
    if (width != 0 || height != 0) text += " of size " + std::to_string(width) + "x" + std::to_string(height);
    return text;
}

TestUser::TestUser(const std::string& display) : view_(display) {
    xcb_connection_t* const x = view_.connection();
    const auto xfixes = owned(xcb_xfixes_query_version_reply(x, xcb_xfixes_query_version(x, 5, 0), nullptr));
    if (!xfixes) throw Error("the X server lacks XFixes");
    selectionEvent_ = xcb_get_extension_data(x, &xcb_xfixes_id)->first_event;

    window_ = xcb_generate_id(x);
    xcb_create_window(x, XCB_COPY_FROM_PARENT, window_, view_.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_xfixes_select_selection_input(x, window_, view_.atom(clipboard),
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);

    const xcb_setup_t& setup = *xcb_get_setup(x);
    firstCode_ = setup.min_keycode;
    const auto count = static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1);
    const auto mapping =
        owned(xcb_get_keyboard_mapping_reply(x, xcb_get_keyboard_mapping(x, firstCode_, count), nullptr));
    if (!mapping) throw Error("the X server has no keyboard");
    keysymsPerCode_ = mapping->keysyms_per_keycode;
    const auto* const first = xcb_get_keyboard_mapping_keysyms(mapping.get());
    keysyms_.assign(first, first + xcb_get_keyboard_mapping_keysyms_length(mapping.get()));
}

void TestUser::fake(std::uint8_t type, std::uint8_t detail, PixelSpot spot) const {
    if (xcb_get_extension_data(view_.connection(), &xcb_test_id)->present == 0) throw Error("the X server lacks XTest");
    xcb_test_fake_input(view_.connection(), type, detail, XCB_CURRENT_TIME, view_.root(),
                        static_cast<std::int16_t>(spot.x), static_cast<std::int16_t>(spot.y), 0);
    view_.synchronize();
}

void TestUser::moveTo(PixelSpot spot) const {
    fake(XCB_MOTION_NOTIFY, 0, spot);
}

void TestUser::press(Button button) const {
    fake(XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button));
    waitForButton(button, Press::down);
}

void TestUser::release(Button button) const {
    fake(XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button));
    waitForButton(button, Press::up);
}

// A window manager that looks at a click first holds the pointer back meanwhile, and keys would overtake it.
void TestUser::waitForButton(Button button, Press state) const {
    const unsigned mask = XCB_BUTTON_MASK_1 << (static_cast<unsigned>(button) - 1);
    waitFor("the pointer to be let go", [&] {
        const auto pointer = owned(
            xcb_query_pointer_reply(view_.connection(), xcb_query_pointer(view_.connection(), view_.root()), nullptr));
        return pointer && ((pointer->mask & mask) != 0) == (state == Press::down);
    });
}

void TestUser::click(PixelSpot spot, Button button) const {
    moveTo(spot);
    press(button);
    release(button);
}

void TestUser::doubleClick(PixelSpot spot) const {
    click(spot);
    click(spot);
}

void TestUser::scroll(PixelSpot spot, int notches) const {
    for (int notch = 0; notch < std::abs(notches); ++notch)
        click(spot, notches < 0 ? Button::wheelUp : Button::wheelDown);
}

void TestUser::drag(PixelSpot from, PixelSpot to) const {
    beginDrag(from, to);
    release();
}

void TestUser::beginDrag(PixelSpot from, PixelSpot to) const {
    moveTo(from);
    press();
    for (int step = 1; step <= dragSteps; ++step) {
        moveTo({.x = from.x + (to.x - from.x) * step / dragSteps, .y = from.y + (to.y - from.y) * step / dragSteps});
    }
}

void TestUser::waitForFreePointer() const {
    xcb_connection_t* const x = view_.connection();
    waitFor("the pointer to be free", [&] {
        const auto grab = owned(
            xcb_grab_pointer_reply(x,
                                   xcb_grab_pointer(x, 0, view_.root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                                    XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME),
                                   nullptr));
        return grab && grab->status == XCB_GRAB_STATUS_SUCCESS;
    });
    xcb_ungrab_pointer(x, XCB_CURRENT_TIME);
    view_.synchronize();
}

TestUser::Stroke TestUser::strokeOf(std::uint32_t keysym) const {
    for (std::size_t index = 0; index < keysyms_.size(); index += keysymsPerCode_) {
        const auto code = static_cast<xcb_keycode_t>(firstCode_ + index / keysymsPerCode_);
        if (keysyms_[index] == keysym) return {.code = code};
        if (keysymsPerCode_ > 1 && keysyms_[index + 1] == keysym) return {.code = code, .isShifted = true};
    }
    throw Error("the keyboard has no key for keysym " + std::to_string(keysym));
}

std::vector<xcb_keycode_t> TestUser::codesOf(std::string_view combination) const {
    std::vector<xcb_keycode_t> codes;
    while (!combination.empty()) {
        const std::string name(combination.substr(0, combination.find('+')));
        combination.remove_prefix(std::min(name.size() + 1, combination.size()));
        const xkb_keysym_t keysym = xkb_keysym_from_name(name.c_str(), XKB_KEYSYM_NO_FLAGS);
        if (keysym == XKB_KEY_NoSymbol) throw Error("there is no key named " + name);
        codes.push_back(strokeOf(keysym).code);
    }
    return codes;
}

void TestUser::key(xcb_keycode_t code, Press press) const {
    fake(press == Press::down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code);
}

void TestUser::pressKeys(std::string_view combination) const {
    holdKeys(combination);
    releaseKeys(combination);
}

void TestUser::holdKeys(std::string_view combination) const {
    for (const xcb_keycode_t code : codesOf(combination)) key(code, Press::down);
}

void TestUser::releaseKeys(std::string_view combination) const {
    const auto codes = codesOf(combination);
    std::for_each(codes.rbegin(), codes.rend(), [this](xcb_keycode_t code) { key(code, Press::up); });
}

TestUser::Grab TestUser::grabOf(std::string_view combination) const {
    xcb_connection_t* const x = view_.connection();
    auto codes = codesOf(combination);
    const xcb_keycode_t key = codes.back();
    codes.pop_back();
    const auto mapping = owned(xcb_get_modifier_mapping_reply(x, xcb_get_modifier_mapping(x), nullptr));
    if (!mapping) throw Error("the X server has no modifiers");
    const auto* const modifierCodes = xcb_get_modifier_mapping_keycodes(mapping.get());
    std::uint16_t mask = 0;
    for (int index = 0; index < xcb_get_modifier_mapping_keycodes_length(mapping.get()); ++index) {
        const bool isHeld = std::find(codes.begin(), codes.end(), modifierCodes[index]) != codes.end();
        if (isHeld) mask = static_cast<std::uint16_t>(mask | 1U << (index / mapping->keycodes_per_modifier));
    }
    return {.modifiers = mask, .key = key};
}

bool TestUser::isTaken(std::string_view combination) const {
    xcb_connection_t* const x = view_.connection();
    const auto [mask, key] = grabOf(combination);
    // In one breath: whoever takes the combination at this moment must not find it taken by the question.
    xcb_grab_server(x);
    const auto attempt = xcb_grab_key_checked(x, 0, view_.root(), mask, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_ungrab_key(x, key, view_.root(), mask);
    xcb_ungrab_server(x);
    return owned(xcb_request_check(x, attempt)) != nullptr;
}

void TestUser::takeKeys(std::string_view combination) const {
    xcb_connection_t* const x = view_.connection();
    const auto [mask, key] = grabOf(combination);
    const auto request = xcb_grab_key_checked(x, 0, view_.root(), mask, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    if (owned(xcb_request_check(x, request))) throw Error("another program has " + std::string(combination));
}

void TestUser::giveKeysBack(std::string_view combination) const {
    const auto [mask, key] = grabOf(combination);
    owned(xcb_request_check(view_.connection(), xcb_ungrab_key_checked(view_.connection(), key, view_.root(), mask)));
}

void TestUser::type(std::string_view text) const {
    const xcb_keycode_t shift = strokeOf(XKB_KEY_Shift_L).code;
    for (const char character : text) {
        const Stroke stroke = strokeOf(
            character == '\n' ? XKB_KEY_Return : static_cast<std::uint32_t>(static_cast<unsigned char>(character)));
        if (stroke.isShifted) key(shift, Press::down);
        key(stroke.code, Press::down);
        key(stroke.code, Press::up);
        if (stroke.isShifted) key(shift, Press::up);
    }
}

std::vector<DesktopWindow> TestUser::find(const WindowLook& look) const {
    std::vector<DesktopWindow> found = view_.windows();
    std::erase_if(found, [&](const DesktopWindow& window) { return !look.fits(window); });
    return found;
}

DesktopWindow TestUser::waitForWindow(const WindowLook& look) const {
    return *waitFor(look.description(), [&]() -> std::optional<DesktopWindow> {
        const auto found = find(look);
        return found.empty() ? std::nullopt : std::optional(found.front());
    });
}

void TestUser::waitUntilGone(xcb_window_t window) const {
    waitFor("the end of a window", [&] { return !view_.window(window); });
}

void TestUser::waitUntilActive(xcb_window_t window) const {
    waitFor("a window to have the keyboard", [&] { return view_.activeWindow() == window; });
}

void TestUser::moveWindow(xcb_window_t window, PixelSpot corner) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = view_.atom("_NET_MOVERESIZE_WINDOW");
    constexpr std::uint32_t hasPosition = 0x300;
    message.data.data32[0] = XCB_GRAVITY_STATIC | hasPosition;
    message.data.data32[1] = static_cast<std::uint32_t>(corner.x);
    message.data.data32[2] = static_cast<std::uint32_t>(corner.y);
    xcb_send_event(view_.connection(), 0, view_.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    view_.synchronize();
}

void TestUser::handleEvents() {
    while (const X11Event event{xcb_poll_for_event(view_.connection())}) {
        const int type = event->response_type & 0x7F;
        if (type == selectionEvent_ + XCB_XFIXES_SELECTION_NOTIFY) ++clipboardChanges_;
        if (type == XCB_SELECTION_NOTIFY)
            delivery_ = reinterpret_cast<const xcb_selection_notify_event_t&>(*event).property;
    }
}

std::string TestUser::clipboardText() {
    xcb_connection_t* const x = view_.connection();
    const std::string property = "OVRIN_TEST_USER";
    delivery_.reset();
    // The server itself answers for a clipboard that nobody owns.
    xcb_convert_selection(x, window_, view_.atom(clipboard), view_.atom("UTF8_STRING"), view_.atom(property),
                          XCB_CURRENT_TIME);
    view_.synchronize();
    waitFor("the owner of the clipboard", [this] {
        handleEvents();
        return delivery_.has_value();
    });
    return *delivery_ == XCB_ATOM_NONE ? std::string() : view_.text(window_, property);
}

void TestUser::waitForClipboard(const std::string& text) {
    std::string found;
    try {
        waitFor("the clipboard to hold " + text, [&] { return (found = clipboardText()) == text; });
    } catch (const Error& error) {
        throw Error(error.errorDescription() + "; it holds " + found);
    }
}

int TestUser::clipboardChanges() {
    view_.synchronize();
    handleEvents();
    return clipboardChanges_;
}

QImage TestUser::picture() const {
    const xcb_screen_t& screen = view_.screen();
    return picture({.x = 0, .y = 0, .width = screen.width_in_pixels, .height = screen.height_in_pixels});
}

QImage TestUser::picture(const PixelArea& area) const {
    const xcb_screen_t& screen = view_.screen();
    const int left = std::max(area.x, 0);
    const int top = std::max(area.y, 0);
    const int width = std::min<int>(area.x + area.width, screen.width_in_pixels) - left;
    const int height = std::min<int>(area.y + area.height, screen.height_in_pixels) - top;
    if (width <= 0 || height <= 0) throw Error("that is not on the screen");
    const auto reply = owned(
        xcb_get_image_reply(view_.connection(),
                            xcb_get_image(view_.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, view_.root(),
                                          static_cast<std::int16_t>(left), static_cast<std::int16_t>(top),
                                          static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), ~0U),
                            nullptr));
    if (!reply) throw Error("the X server gives no picture");
    return QImage(xcb_get_image_data(reply.get()), width, height, QImage::Format_RGB32).copy();
}

void TestUser::savePicture(const PixelArea& area, const std::filesystem::path& file) const {
    std::filesystem::create_directories(file.parent_path());
    if (!picture(area).save(QString::fromStdString(file.string()))) throw Error("cannot write " + file.string());
}

QImage TestUser::waitForPicture(const std::string& what, const PixelArea& area,
                                const std::function<bool(const QImage&)>& fits) const {
    return *waitFor(what, [&]() -> std::optional<QImage> {
        QImage image = picture(area);
        return fits(image) ? std::optional(std::move(image)) : std::nullopt;
    });
}

void TestUser::waitForStillPicture(const PixelArea& area) const {
    constexpr int enoughLooks = 25;
    QImage last = picture(area);
    int sameLooks = 0;
    waitFor("the picture to stand still", [&] {
        QImage image = picture(area);
        sameLooks = image == last ? sameLooks + 1 : 0;
        last = std::move(image);
        return sameLooks == enoughLooks;
    });
}

}  // namespace ovrin
