#include "platform/linux/x11/x11_selection.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cerrno>
#include <cstring>
#include <span>

#include <poll.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin {

namespace {

constexpr std::uint8_t sentEventBit = 0x80;
constexpr std::size_t largestPiece = 256U << 10U;

std::span<const std::byte> bytesOf(const void* data, std::size_t size) {
    return {static_cast<const std::byte*>(data), size};
}

}  // namespace

struct X11Selection::Property {
    xcb_atom_t type = XCB_ATOM_NONE;
    Bytes data;  // 32-bit values take four bytes each

    std::vector<xcb_atom_t> atoms() const {
        std::vector<xcb_atom_t> result(data.size() / sizeof(xcb_atom_t));
        std::memcpy(result.data(), data.data(), result.size() * sizeof(xcb_atom_t));
        return result;
    }
};

X11Selection::X11Selection(const char* display, User user, std::chrono::milliseconds patience)
    : connection_(connectToX11(display)), user_(std::move(user)), patience_(patience) {
    xcb_connection_t* const connection = connection_.get();
    const xcb_query_extension_reply_t* const xfixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (xfixes == nullptr || xfixes->present == 0) throw Error("显示服务器缺少 XFixes 扩展，剪贴板不可用。");
    const X11Reply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        connection, xcb_xfixes_query_version(connection, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION), nullptr));
    ownerChangeEvent_ = static_cast<std::uint8_t>(xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    pieceSize_ = std::min<std::size_t>(largestPiece, xcb_get_maximum_request_length(connection) * std::size_t{4} / 2);

    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    constexpr std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    window_ = xcb_generate_id(connection);
    xcb_create_window(connection, 0, window_, screen.root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    xcb_xfixes_select_selection_input(connection, window_, atom("CLIPBOARD"),
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    xcb_flush(connection);
}

bool X11Selection::isLost() const {
    return xcb_connection_has_error(connection_.get()) != 0;
}

X11Selection::Pumped X11Selection::pump(std::optional<Clock::time_point> deadline) {
    if (handleArrived()) return Pumped::handled;

    int timeout = -1;
    if (deadline) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count();
        if (left <= 0) return Pumped::deadline;
        timeout = static_cast<int>(left);
    }
    const int server = isLost() ? -1 : xcb_get_file_descriptor(connection_.get());
    std::array<pollfd, 2> sources{{{server, POLLIN, 0}, {user_.wakeDescriptor, POLLIN, 0}}};
    const int ready = ::poll(sources.data(), sources.size(), timeout);
    if (ready == 0) return Pumped::deadline;
    if (ready < 0 || (sources[1].revents & POLLIN) == 0) return Pumped::handled;
    std::uint64_t count = 0;
    static_cast<void>(::read(user_.wakeDescriptor, &count, sizeof count));
    return Pumped::woken;
}

bool X11Selection::handleArrived() {
    bool hasHandled = false;
    while (const X11Event event{xcb_poll_for_event(connection_.get())}) {
        handle(*event);
        hasHandled = true;
    }
    xcb_flush(connection_.get());
    return hasHandled;
}

// Until the condition holds; false when the patience was in vain, or it is given up. What wakes the thread otherwise
// has to wait.
template <typename IsDone, typename IsGivenUp>
bool X11Selection::pumpUntil(IsDone isDone, IsGivenUp isGivenUp) {
    const auto deadline = Clock::now() + patience_;
    bool done = isDone();
    while (!done && !isLost() && !isGivenUp() && pump(deadline) != Pumped::deadline) done = isDone();
    return done;
}

template <typename IsDone>
bool X11Selection::pumpUntil(IsDone isDone) {
    return pumpUntil(isDone, [] { return false; });
}

xcb_atom_t X11Selection::atom(std::string_view name) {
    const auto known = atoms_.find(name);
    if (known != atoms_.end()) return known->second;
    const xcb_atom_t atom = atomNamed(connection_.get(), name);
    if (atom != XCB_ATOM_NONE) atoms_.emplace(name, atom);
    return atom;
}

std::string X11Selection::atomName(xcb_atom_t atom) {
    const X11Reply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(connection_.get(), xcb_get_atom_name(connection_.get(), atom), nullptr));
    if (!reply) return {};
    return {xcb_get_atom_name_name(reply.get()), static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

// Owners have to say since when (ICCCM 2.1). A change of a property that changes nothing brings the time.
xcb_timestamp_t X11Selection::serverTime() {
    time_.reset();
    xcb_change_property(connection_.get(), XCB_PROP_MODE_APPEND, window_, atom("OVRIN_TIME"), XCB_ATOM_INTEGER, 32, 0,
                        nullptr);
    pumpUntil([this] { return time_.has_value(); });
    return time_.value_or(XCB_CURRENT_TIME);
}

xcb_window_t X11Selection::ownerOf(xcb_atom_t selection) {
    const X11Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection_.get(), xcb_get_selection_owner(connection_.get(), selection), nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

void X11Selection::own([[maybe_unused]] Source source, ClipboardItem item) {
    assert(source == Source::clipboard);
    const xcb_timestamp_t now = serverTime();
    const bool isEmpty = item.empty();
    own_ = isEmpty ? nullptr : std::make_shared<const OwnContents>(OwnContents{std::move(item), now});
    if (isEmpty) ++ownClearings_;
    const xcb_window_t owner = isEmpty ? static_cast<xcb_window_t>(XCB_WINDOW_NONE) : window_;
    xcb_set_selection_owner(connection_.get(), owner, atom("CLIPBOARD"), now);
    owns();  // somebody may have been quicker (ICCCM 2.1)
}

void X11Selection::handOver() {
    if (!owns()) return;
    const xcb_atom_t manager = atom("CLIPBOARD_MANAGER");
    const X11Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection_.get(), xcb_get_selection_owner(connection_.get(), manager), nullptr));
    if (!owner || owner->owner == XCB_WINDOW_NONE) return;
    request(manager, atom("SAVE_TARGETS"));
    constexpr std::chrono::seconds longest{30};
    const auto end = Clock::now() + longest;
    bool goesOn = true;
    while (goesOn && !notified_ && Clock::now() < end) {
        goesOn = pumpUntil([this, before = servedCount_] { return notified_ || servedCount_ != before; });
    }
}

void X11Selection::handle(const xcb_generic_event_t& event) {
    const std::uint8_t type = event.response_type & static_cast<std::uint8_t>(~sentEventBit);
    if (type == XCB_SELECTION_REQUEST) {
        serve(reinterpret_cast<const xcb_selection_request_event_t&>(event));
    } else if (type == XCB_SELECTION_NOTIFY) {
        handleAnswer(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
    } else if (type == XCB_SELECTION_CLEAR) {
        const auto& notice = reinterpret_cast<const xcb_selection_clear_event_t&>(event);
        if (own_ && notice.time >= own_->since) own_.reset();
    } else if (type == XCB_PROPERTY_NOTIFY) {
        handleProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event));
    } else if (type == XCB_DESTROY_NOTIFY) {
        const auto window = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
        std::erase_if(transfers_, [window](const auto& transfer) { return transfer.first.first == window; });
    } else if (type == ownerChangeEvent_) {
        handleOwnerChange(reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event));
    }
}

// A refusal names no property: one that comes late is known by what was asked for.
void X11Selection::handleAnswer(const xcb_selection_notify_event_t& notice) {
    const bool isRefusal =
        notice.property == XCB_ATOM_NONE && notice.selection == requestSelection_ && notice.target == requestTarget_;
    if (isRefusal || notice.property == requestProperty_) notified_ = notice.property;
}

void X11Selection::handleOwnerChange(const xcb_xfixes_selection_notify_event_t& event) {
    if (event.owner == window_) return;
    const bool isCleared =
        event.owner == XCB_WINDOW_NONE && event.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER;
    if (isCleared && ownClearings_ > 0) {
        --ownClearings_;
        return;
    }
    user_.changedByOthers(Source::clipboard);
}

void X11Selection::handleProperty(const xcb_property_notify_event_t& event) {
    if (event.window != window_) {
        if (event.state == XCB_PROPERTY_DELETE) continueTransfer({event.window, event.atom});
        return;
    }
    if (event.state != XCB_PROPERTY_NEW_VALUE) return;
    if (event.atom == atom("OVRIN_TIME")) time_ = event.time;
    if (event.atom == requestProperty_) hasNewPiece_ = true;
}

void X11Selection::serve(const xcb_selection_request_event_t& request) {
    ++servedCount_;
    // Clients of an old kind name no property; they get the one named as the target (ICCCM 2.2).
    const xcb_atom_t property = request.property == XCB_ATOM_NONE ? request.target : request.property;
    if (own_ && answerLater(request, property)) return;
    const bool isAnswered =
        own_ && (request.target == atom("MULTIPLE") ? answerMultiple(request.requestor, property)
                                                    : answer(request.requestor, request.target, property));
    notify(request, isAnswered ? property : static_cast<xcb_atom_t>(XCB_ATOM_NONE));
}

// Tells the requestor where the answer lies; XCB_ATOM_NONE: refused.
void X11Selection::notify(const xcb_selection_request_event_t& request, xcb_atom_t property) {
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = property;
    xcb_send_event(connection_.get(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notice));
    xcb_flush(connection_.get());
}

const ClipboardRepresentation* X11Selection::ownForm(xcb_atom_t target) {
    const auto form = std::ranges::find_if(own_->item, [&](const auto& known) { return atom(known.type) == target; });
    return form == own_->item.end() ? nullptr : &*form;
}

const ClipboardRepresentation* X11Selection::ownForm(std::string_view type) const {
    const auto form = std::ranges::find(own_->item, type, &ClipboardRepresentation::type);
    return form == own_->item.end() ? nullptr : &*form;
}

// Lives on when the contents are no longer ours.
std::shared_ptr<const X11Selection::Bytes> X11Selection::ownData(const ClipboardRepresentation& form) const {
    return {own_, &form.data};
}

// Whether the form is one that has to be made first; the requestor hears of it when it is. One who wants several forms
// at once (MULTIPLE: clipboard managers) gets those that are there.
bool X11Selection::answerLater(const xcb_selection_request_event_t& request, xcb_atom_t property) {
    const ClipboardRepresentation* const form = ownForm(request.target);
    if (form == nullptr || form->encodedFrom.empty()) return false;
    const ClipboardRepresentation* const source = ownForm(form->encodedFrom);
    if (source == nullptr) return false;
    user_.encode(ownData(*source), form->type, [this, request, property](Bytes data) {
        ++servedCount_;
        const bool isMade = !data.empty();
        if (isMade) {
            put(request.requestor, property, request.target, std::make_shared<const Bytes>(std::move(data)));
        }
        notify(request, isMade ? property : static_cast<xcb_atom_t>(XCB_ATOM_NONE));
    });
    return true;
}

bool X11Selection::answer(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    const auto putValues = [&](xcb_atom_t type, std::size_t count, const void* values) {
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, requestor, property, type, 32,
                            static_cast<std::uint32_t>(count), values);
        return true;
    };
    if (target == atom("TARGETS")) {
        std::vector<xcb_atom_t> offered{atom("TARGETS"), atom("MULTIPLE"), atom("TIMESTAMP")};
        for (const auto& form : own_->item) offered.push_back(atom(form.type));
        return putValues(XCB_ATOM_ATOM, offered.size(), offered.data());
    }
    if (target == atom("TIMESTAMP")) return putValues(XCB_ATOM_INTEGER, 1, &own_->since);

    const ClipboardRepresentation* const form = ownForm(target);
    if (form == nullptr || !form->encodedFrom.empty()) return false;
    // "TEXT" asks for text in whatever encoding suits the owner (ICCCM 2.6.2).
    put(requestor, property, target == atom("TEXT") ? atom("UTF8_STRING") : target, ownData(*form));
    return true;
}

void X11Selection::put(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
                       std::shared_ptr<const Bytes> data) {
    user_.readByOthers();
    if (data->size() > pieceSize_) {
        return beginTransfer(requestor, property, {.data = std::move(data), .type = type});
    }
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, requestor, property, type, 8,
                        static_cast<std::uint32_t>(data->size()), data->data());
}

// Pairs of target and property, each answered by itself (ICCCM 2.6.2); a refused one's property becomes none.
bool X11Selection::answerMultiple(xcb_window_t requestor, xcb_atom_t property) {
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_.get(),
        xcb_get_property(connection_.get(), 0, requestor, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 1U << 16U), nullptr));
    if (!reply || reply->format != 32) return false;
    const auto* const first = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    std::vector<xcb_atom_t> pairs(first, first + reply->value_len);
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        if (pairs[i] == atom("MULTIPLE") || !answer(requestor, pairs[i], pairs[i + 1])) pairs[i + 1] = XCB_ATOM_NONE;
    }
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, requestor, property, atom("ATOM_PAIR"), 32,
                        static_cast<std::uint32_t>(pairs.size()), pairs.data());
    return true;
}

// Too much for one property: the requestor takes it piece by piece, each by deleting the one before (ICCCM 2.7.2).
void X11Selection::beginTransfer(xcb_window_t requestor, xcb_atom_t property, Transfer transfer) {
    constexpr std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_.get(), requestor, XCB_CW_EVENT_MASK, &events);
    const auto size = static_cast<std::uint32_t>(std::min<std::size_t>(transfer.data->size(), UINT32_MAX));
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, requestor, property, atom("INCR"), 32, 1, &size);
    transfers_.insert_or_assign({requestor, property}, std::move(transfer));
}

void X11Selection::continueTransfer(const TransferKey& key) {
    const auto found = transfers_.find(key);
    if (found == transfers_.end()) return;
    Transfer& transfer = found->second;
    const std::size_t count = std::min(pieceSize_, transfer.data->size() - transfer.sent);
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, key.first, key.second, transfer.type, 8,
                        static_cast<std::uint32_t>(count), transfer.data->data() + transfer.sent);
    xcb_flush(connection_.get());
    ++servedCount_;
    transfer.sent += count;
    if (count == 0) transfers_.erase(found);  // the empty piece was the end
}

// Asks for a conversion. The properties change from request to request, so that a late answer to one that was given up
// is not taken for the next one's.
xcb_atom_t X11Selection::request(xcb_atom_t selection, xcb_atom_t target) {
    constexpr unsigned propertyCount = 8;
    requestProperty_ = atom("OVRIN_SELECTION_" + std::to_string(++requestNumber_ % propertyCount));
    requestSelection_ = selection;
    requestTarget_ = target;
    notified_.reset();
    hasNewPiece_ = false;
    xcb_delete_property(connection_.get(), window_, requestProperty_);
    xcb_convert_selection(connection_.get(), window_, selection, target, requestProperty_, XCB_CURRENT_TIME);
    xcb_flush(connection_.get());
    return requestProperty_;
}

X11Selection::Property X11Selection::takeProperty(xcb_atom_t property) {
    constexpr std::uint32_t everything = 0x1FFFFFFF;  // in units of four bytes
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_.get(),
        xcb_get_property(connection_.get(), 1, window_, property, XCB_GET_PROPERTY_TYPE_ANY, 0, everything), nullptr));
    if (!reply) return {};
    const auto bytes = bytesOf(xcb_get_property_value(reply.get()),
                               static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    return {reply->type, {bytes.begin(), bytes.end()}};
}

std::optional<X11Selection::Property> X11Selection::receive(Source source, xcb_atom_t target) {
    if (user_.isGivenUp()) return std::nullopt;
    const xcb_atom_t selection = source == Source::primary ? xcb_atom_t{XCB_ATOM_PRIMARY} : atom("CLIPBOARD");
    const xcb_atom_t property = request(selection, target);
    const bool isAnswered = pumpUntil([this] { return notified_.has_value(); }, user_.isGivenUp);
    if (!isAnswered) return giveUp(source);
    if (*notified_ == XCB_ATOM_NONE) return std::nullopt;
    hasNewPiece_ = false;
    Property contents = takeProperty(property);
    if (contents.type != atom("INCR")) return contents;

    contents = {};
    while (pumpUntil([this] { return hasNewPiece_; }, user_.isGivenUp)) {
        hasNewPiece_ = false;
        const Property piece = takeProperty(property);
        if (piece.data.empty()) return contents;
        if (contents.data.size() + piece.data.size() > largestContents) throwTooMuch(source);
        contents.type = piece.type;
        contents.data.insert(contents.data.end(), piece.data.begin(), piece.data.end());
    }
    return giveUp(source);
}

// After a wait that was in vain.
std::nullopt_t X11Selection::giveUp(Source source) const {
    if (isLost()) throw Error("与显示服务器的连接已断开。");
    if (!user_.isGivenUp()) throwOwnerIsSilent(source);
    return std::nullopt;
}

// Whether the contents are still our own; the server knows it before its notice arrives.
bool X11Selection::owns() {
    if (own_ && ownerOf(atom("CLIPBOARD")) != window_) own_.reset();
    return own_ != nullptr;
}

std::vector<std::string> X11Selection::targets(Source source) {
    std::vector<std::string> names;
    const auto add = [&names](std::string name) {
        if (!name.empty() && !isMetaTarget(name) && std::ranges::find(names, name) == names.end()) {
            names.push_back(std::move(name));
        }
    };
    if (source == Source::clipboard && owns()) {
        for (const auto& form : own_->item) add(form.type);
        return names;
    }
    const auto offered = receive(source, atom("TARGETS"));
    if (!offered) return names;
    for (const xcb_atom_t target : offered->atoms()) add(atomName(target));
    return names;
}

std::optional<X11Selection::Bytes> X11Selection::convert(std::string_view target, Source source) {
    if (source == Source::clipboard && owns()) {
        const ClipboardRepresentation* const form = ownForm(target);
        if (form == nullptr || !form->encodedFrom.empty()) return std::nullopt;
        return form->data;
    }
    auto contents = receive(source, atom(target));
    if (!contents) return std::nullopt;
    return std::move(contents->data);
}

}  // namespace ovrin
