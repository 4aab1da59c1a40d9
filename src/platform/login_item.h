// Seam: whether the desktop starts the program when the user logs in.
#pragma once

namespace ovrin {

// Main thread; each call touches a few small files of the user at most. Failures are an Error whose text the user
// reads.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    // As it is now. Never fails: what cannot be read is not enabled.
    virtual bool isEnabled() const = 0;

    // Has the desktop start the program, or no longer. Throw Error; nothing has changed then.
    virtual void registerItem() = 0;
    virtual void unregisterItem() = 0;
};

}  // namespace ovrin
