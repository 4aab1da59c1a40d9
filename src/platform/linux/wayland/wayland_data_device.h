// The contents of the clipboard and of what is selected (PRIMARY), as the compositor tells every program that asks for
// it, whichever window has the keyboard.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/desktop/selection_client.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "wlr-data-control-unstable-v1-client.h"

namespace ovrin {

// Destroys the protocol's objects. Its own functions for that have no linkage that a type of more than one file could
// name.
struct DestroysDataControl {
    void operator()(zwlr_data_control_manager_v1* object) const { zwlr_data_control_manager_v1_destroy(object); }
    void operator()(zwlr_data_control_device_v1* object) const { zwlr_data_control_device_v1_destroy(object); }
    void operator()(zwlr_data_control_offer_v1* object) const { zwlr_data_control_offer_v1_destroy(object); }
    void operator()(zwlr_data_control_source_v1* object) const { zwlr_data_control_source_v1_destroy(object); }
};
template <typename Object>
using DataControl = std::unique_ptr<Object, DestroysDataControl>;
using WaylandDataSource = DataControl<zwlr_data_control_source_v1>;

// Used by the thread that uses the connection, which outlives it.
class WaylandDataDevice {
public:
    using Source = SelectionClient::Source;

    static bool isOfferedBy(const WaylandConnection& connection);

    // changed: called when somebody has taken one of them over or left it empty, first for what is there already.
    // Throws Error when the compositor lets no program look at the clipboard.
    WaylandDataDevice(WaylandConnection& connection, std::function<void(Source)> changed);
    WaylandDataDevice(const WaylandDataDevice&) = delete;
    WaylandDataDevice& operator=(const WaylandDataDevice&) = delete;

    // What the owner offers; empty without one.
    const std::vector<std::string>& types(Source source) const;

    // Has the owner write the contents of a type that it offers; the descriptor remains the caller's.
    void receive(Source source, const std::string& type, int descriptor) const;

    // What this program's own PRIMARY offers besides its forms, so that it is told from what the user has selected.
    static constexpr const char* ownType = "application/x-com.quel.ovrin";

    // A source without any type, to which the caller adds those that it offers.
    WaylandDataSource makeSource();
    // Makes the source the owner of the clipboard or of PRIMARY; null leaves it without one.
    void set(Source source, zwlr_data_control_source_v1* contents);

private:
    using Manager = DataControl<zwlr_data_control_manager_v1>;
    struct Offer {
        DataControl<zwlr_data_control_offer_v1> object;
        std::vector<std::string> types;
    };

    static Manager bindManager(WaylandConnection& connection);
    std::unique_ptr<Offer>& contents(Source source) { return source == Source::primary ? primary_ : clipboard_; }
    const std::unique_ptr<Offer>& contents(Source source) const {
        return source == Source::primary ? primary_ : clipboard_;
    }
    void introduce(zwlr_data_control_offer_v1* object);
    void replace(Source source, zwlr_data_control_offer_v1* object);

    std::function<void(Source)> changed_;
    Manager manager_;
    DataControl<zwlr_data_control_device_v1> device_;
    std::unique_ptr<Offer> introduced_;  // of which the compositor says next what it is
    std::unique_ptr<Offer> clipboard_;
    std::unique_ptr<Offer> primary_;
};

}  // namespace ovrin
