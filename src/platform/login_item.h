// Seam: whether the desktop starts the program when the user logs in.
#pragma once

namespace ovrin {

// Main thread; each call touches a few small files of the user at most. Failures are an Error whose text the user
// reads.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    // Whether it does so by now. Never fails: what cannot be read is not enabled.
    virtual bool isEnabled() const = 0;

    // Have the desktop start the program, or no longer start it. Both throw Error; nothing has changed then.
    virtual void registerItem() = 0;
    virtual void unregisterItem() = 0;
};

}  // namespace ovrin
