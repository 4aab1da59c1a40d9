#include "platform/linux/wayland/wayland_selection.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "base/error.h"

namespace ovrin {
namespace {

constexpr std::size_t pieceSize = 64U << 10U;  // what a pipe holds

// A clipboard manager asks within some milliseconds; on a busy machine it may take more.
constexpr std::chrono::milliseconds timeForManagers{300};

void makeNonBlocking(int descriptor) {
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

// Writes what the pipe takes now, and takes that away from the rest. False when nothing more can be written.
bool writeSome(int pipe, std::span<const std::byte>& rest) {
    const ssize_t count = ::write(pipe, rest.data(), std::min(rest.size(), pieceSize));
    if (count < 0) return errno == EAGAIN || errno == EINTR;
    rest = rest.subspan(static_cast<std::size_t>(count));
    return !rest.empty();
}

const ClipboardRepresentation* formOf(const ClipboardItem& item, std::string_view type) {
    const auto form = std::ranges::find(item, type, &ClipboardRepresentation::type);
    return form == item.end() ? nullptr : &*form;
}

}  // namespace

WaylandSelection::Descriptor::~Descriptor() {
    if (value_ >= 0) ::close(value_);
}

WaylandSelection::WaylandSelection(const char* name, User user, Limits limits)
    : connection_(name),
      user_(std::move(user)),
      limits_(limits),
      device_(std::make_unique<WaylandDataDevice>(connection_, [this](Source source) { handleChange(source); })) {}

void WaylandSelection::pump() {
    waitOnce(std::nullopt);
}

// The compositor tells of our own contents as well, after their source has become the owner; it tells a source that it
// is no longer the owner before it tells of its successor.
void WaylandSelection::handleChange(Source source) {
    const Holding& held = holding(source);
    if (held.own || (held.isClearing && device_->types(source).empty())) return;
    user_.changedByOthers(source);
}

// Without a compositor nobody has anything. One that is only slow does later what it was asked for.
void WaylandSelection::doWithCompositor(const std::function<void()>& work) {
    try {
        if (!isLost_) work();
    } catch (const Error&) {
        isLost_ = connection_.isLost();
        if (!isLost_) return;
        clipboard_.own.reset();
        primary_.own.reset();
    }
}

void WaylandSelection::throwIfLost() const {
    if (isLost_) throw Error(WaylandConnection::lostDescription);
}

void WaylandSelection::waitOnce(std::optional<Clock::time_point> deadline, int readable) {
    std::vector<pollfd> descriptors{{user_.wakeDescriptor, POLLIN, 0}, {readable, POLLIN, 0}};
    const std::size_t first = descriptors.size();
    for (const Transfer& transfer : transfers_) descriptors.push_back({transfer.pipe->value(), POLLOUT, 0});
    if (isLost_) {
        ::poll(descriptors.data(), 1, -1);
    } else {
        doWithCompositor([&] { connection_.wait(descriptors, deadline); });
    }
    if ((descriptors[0].revents & POLLIN) != 0) {
        std::uint64_t count = 0;
        static_cast<void>(::read(user_.wakeDescriptor, &count, sizeof count));
    }
    // Those that have begun meanwhile are at the end.
    std::size_t index = first;
    std::erase_if(transfers_, [&](Transfer& transfer) {
        const bool isReady = index < descriptors.size() && descriptors[index].revents != 0;
        ++index;
        return isReady && !writeSome(transfer.pipe->value(), transfer.rest);
    });
}

void WaylandSelection::own(Source source, ClipboardItem item) {
    Holding& held = holding(source);
    if (item.empty()) {
        held.own.reset();
        held.isClearing = true;
        doWithCompositor([&] {
            device_->set(source, nullptr);
            connection_.roundTrip();
        });
        held.isClearing = false;
        return;
    }
    doWithCompositor([&] {
        WaylandDataSource offered = device_->makeSource();
        for (const auto& form : item) zwlr_data_control_source_v1_offer(offered.get(), form.type.c_str());
        if (source == Source::primary) {
            zwlr_data_control_source_v1_offer(offered.get(), WaylandDataDevice::ownType);
        }
        static constexpr zwlr_data_control_source_v1_listener listener = {
            [](void* held, zwlr_data_control_source_v1* /*source*/, const char* type, int pipe) {
                const auto& holding = *static_cast<const Holding*>(held);
                holding.client->serve(holding, type, pipe);
            },
            [](void* held, zwlr_data_control_source_v1* /*source*/) { static_cast<Holding*>(held)->own.reset(); }};
        zwlr_data_control_source_v1_add_listener(offered.get(), &listener, &held);
        device_->set(source, offered.get());
        held.own = {.item = std::make_shared<const ClipboardItem>(std::move(item)),
                    .source = std::move(offered),
                    .since = Clock::now()};
        connection_.roundTrip();
    });
}

// A pipe that is closed without contents says that there are none.
void WaylandSelection::serve(const Holding& holding, std::string_view type, int pipe) {
    auto writing = std::make_shared<const Descriptor>(pipe);
    const ClipboardRepresentation* const form = holding.own ? formOf(*holding.own->item, type) : nullptr;
    if (form == nullptr) return;
    makeNonBlocking(pipe);
    const ClipboardRepresentation* const source =
        form->encodedFrom.empty() ? form : formOf(*holding.own->item, form->encodedFrom);
    if (source == nullptr) return;
    user_.readByOthers();
    // The data live on when the contents are no longer ours.
    std::shared_ptr<const Bytes> data(holding.own->item, &source->data);
    if (source == form) return beginTransfer(std::move(data), std::move(writing));
    user_.encode(std::move(data), form->type, [this, writing](Bytes made) {
        beginTransfer(std::make_shared<const Bytes>(std::move(made)), writing);
    });
}

void WaylandSelection::beginTransfer(std::shared_ptr<const Bytes> data, std::shared_ptr<const Descriptor> pipe) {
    const std::span<const std::byte> rest(*data);
    transfers_.push_back({.data = std::move(data), .rest = rest, .pipe = std::move(pipe)});
}

void WaylandSelection::handOver() {
    if (!clipboard_.own) return;
    const auto end = clipboard_.own->since + timeForManagers;
    while (clipboard_.own && Clock::now() < end) waitOnce(end);
    const auto longest = Clock::now() + limits_.longest;
    auto progress = Clock::now();
    while (!transfers_.empty() && !isLost_ && Clock::now() < std::min(progress + limits_.patience, longest)) {
        const std::size_t left = transfers_.front().rest.size();
        waitOnce(std::min(progress + limits_.patience, longest));
        if (transfers_.empty() || transfers_.front().rest.size() != left) progress = Clock::now();
    }
}

std::vector<std::string> WaylandSelection::targets(Source source) {
    std::vector<std::string> names;
    const auto add = [&names](const std::string& name) {
        const bool isForm = !isMetaTarget(name) && name != WaylandDataDevice::ownType;
        if (isForm && std::ranges::find(names, name) == names.end()) names.push_back(name);
    };
    if (const auto& own = holding(source).own) {
        for (const auto& form : *own->item) add(form.type);
    } else {
        throwIfLost();
        std::ranges::for_each(device_->types(source), add);
    }
    return names;
}

std::optional<SelectionClient::Bytes> WaylandSelection::convert(std::string_view target, Source source) {
    if (const auto& own = holding(source).own) {
        const ClipboardRepresentation* const form = formOf(*own->item, target);
        if (form == nullptr || !form->encodedFrom.empty()) return std::nullopt;
        return form->data;
    }
    throwIfLost();
    if (std::ranges::find(device_->types(source), target) == device_->types(source).end()) return std::nullopt;
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
    const Descriptor reading(ends[0]);
    makeNonBlocking(reading.value());
    {
        const Descriptor writing(ends[1]);  // the owner's alone from now on, so that its end is seen
        device_->receive(source, std::string(target), writing.value());
    }
    return readToEnd(source, reading.value());
}

// What comes through the pipe; none when the reader has gone.
std::optional<SelectionClient::Bytes> WaylandSelection::readToEnd(Source source, int pipe) {
    Bytes contents;
    std::vector<std::byte> piece(pieceSize);
    const auto end = Clock::now() + limits_.longest;
    auto deadline = std::min(Clock::now() + limits_.patience, end);
    while (!user_.isGivenUp()) {
        if (contents.size() > limits_.largest || Clock::now() >= end) throwTooMuch(source);
        if (Clock::now() >= deadline) throwOwnerIsSilent(source);
        const ssize_t count = ::read(pipe, piece.data(), piece.size());
        if (count == 0) {
            throwIfLost();  // its end may be that of the owner, too
            return contents;
        }
        if (count > 0) {
            contents.insert(contents.end(), piece.begin(), piece.begin() + count);
            deadline = std::min(Clock::now() + limits_.patience, end);
        } else if (errno == EAGAIN) {
            throwIfLost();
            waitOnce(deadline, pipe);
        } else {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace ovrin
