#include "base/local_date_time.h"

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace ovrin {

namespace {

icu::Locale timeLocale(const Environment& environment) {
    for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) {
        const auto locale = environment.value(name);
        if (!locale) continue;
        const std::string language = locale->substr(0, locale->find('.'));
        if (language == "C" || language == "POSIX") break;
        return icu::Locale::createCanonical(locale->c_str());
    }
    return icu::Locale::getSimplifiedChinese();
}

}  // namespace

struct LocalDateTimeFormat::Format {
    std::unique_ptr<icu::DateFormat> dateFormat;  // none when the library lacks its data
};

LocalDateTimeFormat::LocalDateTimeFormat(const Environment& environment)
    : format_(std::make_unique<Format>(Format{std::unique_ptr<icu::DateFormat>(icu::DateFormat::createDateTimeInstance(
          icu::DateFormat::kMedium, icu::DateFormat::kShort, timeLocale(environment)))})) {}

LocalDateTimeFormat::~LocalDateTimeFormat() = default;
LocalDateTimeFormat::LocalDateTimeFormat(LocalDateTimeFormat&&) noexcept = default;
LocalDateTimeFormat& LocalDateTimeFormat::operator=(LocalDateTimeFormat&&) noexcept = default;

std::string LocalDateTimeFormat::text(Timestamp moment) const {
    if (format_->dateFormat == nullptr) return iso8601Text(moment);
    const std::chrono::duration<double, std::milli> sinceEpoch = moment.time_since_epoch();
    icu::UnicodeString written;
    format_->dateFormat->format(sinceEpoch.count(), written);
    std::string text;
    return written.toUTF8String(text);
}

}  // namespace ovrin
