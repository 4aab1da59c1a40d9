// Where updates come from: asks the feed what there is for this machine, and fetches a package so that it can be
// trusted.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/async_stream.h"
#include "base/event_loop.h"
#include "base/task.h"
#include "platform/http_client.h"
#include "platform/package_system.h"
#include "platform/update_package.h"
#include "updates/update_configuration.h"
#include "updates/update_feed.h"

namespace ovrin {

// What a feed offers.
struct UpdateCheck {
    std::optional<UpdateItem> update;    // newer than the running program, the newest of them
    bool isMachineServed = false;        // the feed has packages for this kind of machine, newer or not
    PackageSystem::Description machine;  // this one

    bool operator==(const UpdateCheck&) const = default;
};

// How far a download has come.
struct UpdateDownload {
    std::uint64_t received = 0;              // bytes
    std::shared_ptr<UpdatePackage> package;  // complete and verified: the last value of the stream
};

// Main thread; what takes time happens on the other loop.
class UpdateSource {
public:
    struct Services {
        EventLoop& loop;  // of the requests; its thread may wait for the disk
        HTTPClientProtocol& http;
        UpdatePackages& packages;
        const PackageSystem& system;
    };

    // What the services name lives at least as long as their loop.
    UpdateSource(UpdateConfiguration configuration, Services services);

    // Throws Error with the sentence for the user.
    Task<UpdateCheck> check() const;

    // Fails with Error when the package is not, to the byte, what the key's owner has signed, or when it is not this
    // program, for this machine, newer than the running one and of the version that the feed said. Values come for
    // every percent, and one when all has arrived and is about to be verified. Dropping the stream ends the download.
    AsyncStream<UpdateDownload> download(UpdateItem item) const;

private:
    UpdateConfiguration configuration_;
    Services services_;
};

}  // namespace ovrin
