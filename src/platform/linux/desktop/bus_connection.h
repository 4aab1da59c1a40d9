// A connection of one's own to the session bus. The one that a process shares ends the process when the bus does.
#pragma once

#include <memory>

#include <gio/gio.h>

#include "platform/linux/desktop/bus_deadline.h"

namespace ovrin {

using BusConnection = std::unique_ptr<GDBusConnection, UnreferenceObject>;

// Null where there is no session bus, or none that answers before the cancellable is cancelled. Any thread.
BusConnection connectToSessionBus(GCancellable* deadline);

}  // namespace ovrin
