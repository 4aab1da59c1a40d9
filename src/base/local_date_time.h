// Moments as the user reads them: an abbreviated date and a short time in the user's locale and the time zone of the
// machine ("2026年3月1日 17:05", "Mar 1, 2026, 5:05 PM").
#pragma once

#include <memory>
#include <string>

#include "base/date_time.h"
#include "base/environment.h"

namespace ovrin {

// One thread.
class LocalDateTimeFormat {
public:
    // The locale comes from LC_ALL, LC_TIME and LANG, in this order; C, POSIX and none stand for the language of the
    // program.
    explicit LocalDateTimeFormat(const Environment& environment);
    ~LocalDateTimeFormat();
    LocalDateTimeFormat(LocalDateTimeFormat&&) noexcept;
    LocalDateTimeFormat& operator=(LocalDateTimeFormat&&) noexcept;

    std::string text(Timestamp moment) const;

private:
    struct Format;
    std::unique_ptr<const Format> format_;
};

}  // namespace ovrin
