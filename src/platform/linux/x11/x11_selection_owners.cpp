#include "platform/linux/x11/x11_selection_owners.h"

#include <algorithm>

#include <xcb/xfixes.h>

#include "base/error.h"

namespace ovrin {

namespace {

constexpr std::uint32_t everyOwnerChange = XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                           XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                           XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE;

bool isOwned(xcb_connection_t* connection, xcb_atom_t selection) {
    const X11Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

}  // namespace

X11SelectionOwners::X11SelectionOwners(const char* display, const std::vector<std::string>& selections)
    : connection_(connectToX11(display)) {
    auto* const connection = connection_.get();
    const auto* const extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    const bool hearsOfChanges = extension != nullptr && extension->present != 0;
    if (hearsOfChanges) {
        ownerChangeEvent_ = static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
        // The extension serves only clients that have asked for its version.
        const auto question = xcb_xfixes_query_version(connection, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
        xcb_discard_reply(connection, question.sequence);
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    for (const auto& name : selections) {
        const xcb_atom_t selection = atomNamed(connection, name);
        // Followed before it is asked for, so that no change is missed.
        if (hearsOfChanges) xcb_xfixes_select_selection_input(connection, root, selection, everyOwnerChange);
        selections_.insert_or_assign(selection, Selection{name, isOwned(connection, selection)});
    }
    // What came along with the answers would not make the descriptor readable again.
    process();
}

bool X11SelectionOwners::hasOwner(std::string_view selection) const {
    return std::ranges::any_of(
        selections_, [&](const auto& entry) { return entry.second.name == selection && entry.second.hasOwner; });
}

bool X11SelectionOwners::process() {
    while (const auto event = X11Event(xcb_poll_for_event(connection_.get()))) {
        if (ownerChangeEvent_ == 0 || event->response_type != ownerChangeEvent_) continue;
        const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(*event);
        const auto known = selections_.find(change.selection);
        if (known != selections_.end()) known->second.hasOwner = change.owner != XCB_WINDOW_NONE;
    }
    return xcb_connection_has_error(connection_.get()) == 0;
}

}  // namespace ovrin
