// The X11 clipboard as one client sees it: takes it over and serves its contents to others, and asks its owner for
// them, in pieces where they are large (ICCCM, section 2). Reads what is selected (PRIMARY) as well.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include "platform/clipboard_service.h"
#include "platform/linux/desktop/selection_client.h"
#include "platform/linux/x11/x11_connection.h"

namespace ovrin {

class X11Selection final : public SelectionClient {
public:
    using Clock = std::chrono::steady_clock;

    // display: such as ":0"; null for the one the environment names. patience: how long an owner may let each piece
    // wait. Throws Error when no server answers or it lacks XFixes.
    X11Selection(const char* display, User user, std::chrono::milliseconds patience = defaultPatience);

    void pump() override { pump(std::nullopt); }
    void own(Source source, ClipboardItem item) override;  // the clipboard alone
    // To the desktop's clipboard manager, if it has one. That may take its time as long as it goes on taking, up to
    // half a minute.
    void handOver() override;
    std::vector<std::string> targets(Source source) override;
    std::optional<Bytes> convert(std::string_view target, Source source) override;

private:
    // Handles what has arrived; waits for something to arrive when nothing has, until the deadline, if any.
    enum class Pumped : std::uint8_t { handled, deadline, woken };
    Pumped pump(std::optional<Clock::time_point> deadline);

    struct OwnContents {
        ClipboardItem item;
        xcb_timestamp_t since = XCB_CURRENT_TIME;
    };
    // Contents on their way to somebody, piece by piece.
    struct Transfer {
        std::shared_ptr<const Bytes> data;
        xcb_atom_t type = XCB_ATOM_NONE;
        std::size_t sent = 0;
    };
    using TransferKey = std::pair<xcb_window_t, xcb_atom_t>;

    xcb_atom_t atom(std::string_view name);
    std::string atomName(xcb_atom_t atom);
    xcb_timestamp_t serverTime();
    xcb_window_t ownerOf(xcb_atom_t selection);
    bool isLost() const;
    bool owns();

    bool handleArrived();
    void handle(const xcb_generic_event_t& event);
    void handleAnswer(const xcb_selection_notify_event_t& notice);
    void handleOwnerChange(const xcb_xfixes_selection_notify_event_t& event);
    void handleProperty(const xcb_property_notify_event_t& event);

    void serve(const xcb_selection_request_event_t& request);
    void notify(const xcb_selection_request_event_t& request, xcb_atom_t property);
    bool answer(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    bool answerMultiple(xcb_window_t requestor, xcb_atom_t property);
    bool answerLater(const xcb_selection_request_event_t& request, xcb_atom_t property);
    const ClipboardRepresentation* ownForm(xcb_atom_t target);
    const ClipboardRepresentation* ownForm(std::string_view type) const;
    std::shared_ptr<const Bytes> ownData(const ClipboardRepresentation& form) const;
    void put(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type, std::shared_ptr<const Bytes> data);
    void beginTransfer(xcb_window_t requestor, xcb_atom_t property, Transfer transfer);
    void continueTransfer(const TransferKey& key);

    template <typename IsDone>
    bool pumpUntil(IsDone isDone);
    template <typename IsDone, typename IsGivenUp>
    bool pumpUntil(IsDone isDone, IsGivenUp isGivenUp);
    xcb_atom_t request(xcb_atom_t selection, xcb_atom_t target);
    struct Property;
    Property takeProperty(xcb_atom_t property);
    std::optional<Property> receive(Source source, xcb_atom_t target);
    std::nullopt_t giveUp(Source source) const;

    X11Connection connection_;
    User user_;
    std::chrono::milliseconds patience_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
    std::uint8_t ownerChangeEvent_ = 0;
    std::size_t pieceSize_ = 0;
    std::map<std::string, xcb_atom_t, std::less<>> atoms_;

    std::shared_ptr<const OwnContents> own_;
    std::map<TransferKey, Transfer> transfers_;
    std::size_t servedCount_ = 0;  // answers and pieces that others have got
    int ownClearings_ = 0;         // owner changes to nobody that are our own and not announced yet

    // The request under way, and what it has heard.
    unsigned requestNumber_ = 0;
    xcb_atom_t requestSelection_ = XCB_ATOM_NONE;
    xcb_atom_t requestTarget_ = XCB_ATOM_NONE;
    xcb_atom_t requestProperty_ = XCB_ATOM_NONE;
    std::optional<xcb_atom_t> notified_;  // where the answer lies; XCB_ATOM_NONE: refused
    bool hasNewPiece_ = false;
    std::optional<xcb_timestamp_t> time_;
};

}  // namespace ovrin
