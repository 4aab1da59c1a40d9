#include "base/local_date_time.h"

#include <gtest/gtest.h>
#include <unicode/timezone.h>

namespace ovrin {
namespace {

TEST(LocalDateTimeFormat, WritesAnAbbreviatedDateAndAShortTimeInTheUsersLocale) {
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("Asia/Shanghai"));
    const Timestamp moment = *parseIso8601("2026-03-01T09:05:59Z");
    const struct {
        Environment::Variables variables;
        std::string text;
    } rows[] = {
        {{{"LANG", "zh_CN.UTF-8"}}, "2026年3月1日 17:05"},
        {{{"LANG", "en_US.UTF-8"}, {"LC_TIME", "de_DE@euro"}}, "01.03.2026, 17:05"},
        {{{"LANG", "de_DE"}, {"LC_ALL", "C.UTF-8"}}, "2026年3月1日 17:05"},
        {{}, "2026年3月1日 17:05"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(LocalDateTimeFormat(Environment(row.variables)).text(moment), row.text);
    }
}

}  // namespace
}  // namespace ovrin
