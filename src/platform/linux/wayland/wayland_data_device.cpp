#include "platform/linux/wayland/wayland_data_device.h"

#include <utility>

#include "base/error.h"

namespace ovrin {

namespace {

// The protocol under the name that it has had since it became everybody's: on the wire it is the same, but that PRIMARY
// belongs to its first version. Its objects can do with the other name's descriptions.
const wl_interface& successor() {
    static const wl_interface interface = [] {
        wl_interface renamed = zwlr_data_control_manager_v1_interface;
        renamed.name = "ext_data_control_manager_v1";
        renamed.version = 1;
        return renamed;
    }();
    return interface;
}

}  // namespace

bool WaylandDataDevice::isOfferedBy(const WaylandConnection& connection) {
    const bool isNamed =
        connection.versionOf(successor()) > 0 || connection.versionOf(zwlr_data_control_manager_v1_interface) > 0;
    return isNamed && connection.seat() != nullptr;
}

WaylandDataDevice::Manager WaylandDataDevice::bindManager(WaylandConnection& connection) {
    Manager manager(connection.bind<zwlr_data_control_manager_v1>(successor(), 1));
    if (!manager) {
        manager.reset(connection.bind<zwlr_data_control_manager_v1>(zwlr_data_control_manager_v1_interface, 2));
    }
    return manager;
}

WaylandDataDevice::WaylandDataDevice(WaylandConnection& connection, std::function<void(Source)> changed)
    : changed_(std::move(changed)), manager_(bindManager(connection)) {
    if (!manager_ || connection.seat() == nullptr) throw Error("此桌面（Wayland）不支持读取其他程序的剪贴板。");
    device_.reset(zwlr_data_control_manager_v1_get_data_device(manager_.get(), connection.seat()));
    static constexpr zwlr_data_control_device_v1_listener listener = {
        [](void* self, zwlr_data_control_device_v1* /*device*/, zwlr_data_control_offer_v1* offer) {
            static_cast<WaylandDataDevice*>(self)->introduce(offer);
        },
        [](void* self, zwlr_data_control_device_v1* /*device*/, zwlr_data_control_offer_v1* offer) {
            static_cast<WaylandDataDevice*>(self)->replace(Source::clipboard, offer);
        },
        // The seat has gone.
        [](void* self, zwlr_data_control_device_v1* /*device*/) {
            static_cast<WaylandDataDevice*>(self)->replace(Source::clipboard, nullptr);
            static_cast<WaylandDataDevice*>(self)->replace(Source::primary, nullptr);
        },
        [](void* self, zwlr_data_control_device_v1* /*device*/, zwlr_data_control_offer_v1* offer) {
            static_cast<WaylandDataDevice*>(self)->replace(Source::primary, offer);
        }};
    zwlr_data_control_device_v1_add_listener(device_.get(), &listener, this);
    connection.roundTrip();
}

void WaylandDataDevice::introduce(zwlr_data_control_offer_v1* object) {
    introduced_ = std::make_unique<Offer>();
    introduced_->object.reset(object);
    static constexpr zwlr_data_control_offer_v1_listener listener = {
        [](void* types, zwlr_data_control_offer_v1* /*offer*/, const char* type) {
            static_cast<std::vector<std::string>*>(types)->emplace_back(type);
        }};
    zwlr_data_control_offer_v1_add_listener(object, &listener, &introduced_->types);
}

void WaylandDataDevice::replace(Source source, zwlr_data_control_offer_v1* object) {
    contents(source) = object == nullptr ? nullptr : std::move(introduced_);
    changed_(source);
}

const std::vector<std::string>& WaylandDataDevice::types(Source source) const {
    static const std::vector<std::string> none;
    return contents(source) ? contents(source)->types : none;
}

void WaylandDataDevice::receive(Source source, const std::string& type, int descriptor) const {
    zwlr_data_control_offer_v1_receive(contents(source)->object.get(), type.c_str(), descriptor);
}

WaylandDataSource WaylandDataDevice::makeSource() {
    return WaylandDataSource(zwlr_data_control_manager_v1_create_data_source(manager_.get()));
}

void WaylandDataDevice::set(Source source, zwlr_data_control_source_v1* contents) {
    if (source == Source::primary) {
        zwlr_data_control_device_v1_set_primary_selection(device_.get(), contents);
    } else {
        zwlr_data_control_device_v1_set_selection(device_.get(), contents);
    }
}

}  // namespace ovrin
