#include "base/date_time.h"

#include <array>
#include <cstdio>

namespace ovrin {
namespace {

// Reads a text from the front; a step that finds something else makes all further steps fail.
class Reader {
public:
    explicit Reader(std::string_view rest) : rest_(rest) {}

    bool isDone() const { return !failed_ && rest_.empty(); }
    char next() const { return failed_ || rest_.empty() ? '\0' : rest_.front(); }

    void expect(char character) {
        if (next() == character) {
            rest_.remove_prefix(1);
        } else {
            failed_ = true;
        }
    }

    bool hasDigit() const { return next() >= '0' && next() <= '9'; }

    int digit() {
        if (!hasDigit()) {
            failed_ = true;
            return 0;
        }
        const int value = next() - '0';
        rest_.remove_prefix(1);
        return value;
    }

    int number(int digits) {
        int value = 0;
        for (int count = 0; count < digits; ++count) value = value * 10 + digit();
        return value;
    }

private:
    std::string_view rest_;
    bool failed_ = false;
};

std::chrono::nanoseconds readFraction(Reader& reader) {
    std::chrono::nanoseconds fraction{0};
    if (reader.next() != '.') return fraction;
    reader.expect('.');
    std::int64_t unit = 100'000'000;
    do {
        fraction += std::chrono::nanoseconds(reader.digit() * unit);
        unit /= 10;
    } while (reader.hasDigit());
    return fraction;
}

std::chrono::minutes readZone(Reader& reader) {
    if (reader.next() == 'Z') {
        reader.expect('Z');
        return std::chrono::minutes(0);
    }
    const bool isWest = reader.next() == '-';
    reader.expect(isWest ? '-' : '+');
    const int hours = reader.number(2);
    reader.expect(':');
    const int minutes = reader.number(2);
    const std::chrono::minutes offset = std::chrono::hours(hours) + std::chrono::minutes(minutes);
    return isWest ? -offset : offset;
}

}  // namespace

std::string iso8601Text(Timestamp moment) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(moment);
    const auto day = std::chrono::floor<std::chrono::days>(seconds);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(seconds - day);
    std::array<char, 40> text{};
    const int length = std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
        static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
        static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
    return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<Timestamp> parseIso8601(std::string_view text) {
    Reader reader(text);
    const std::chrono::year year(reader.number(4));
    reader.expect('-');
    const std::chrono::month month(static_cast<unsigned>(reader.number(2)));
    reader.expect('-');
    const std::chrono::day day(static_cast<unsigned>(reader.number(2)));
    reader.expect('T');
    const int hours = reader.number(2);
    reader.expect(':');
    const int minutes = reader.number(2);
    reader.expect(':');
    const int seconds = reader.number(2);
    const std::chrono::nanoseconds fraction = readFraction(reader);
    const std::chrono::minutes zone = readZone(reader);

    const std::chrono::year_month_day date(year, month, day);
    const bool isTime = hours < 24 && minutes < 60 && seconds <= 60;  // 60: a leap second
    if (!reader.isDone() || !date.ok() || !isTime || std::chrono::abs(zone) >= std::chrono::days(1))
        return std::nullopt;

    // A clock of nanoseconds ends in the year 2262 and began in 1677.
    const auto day0 = std::chrono::sys_days(date);
    if (date.year() <= std::chrono::year(1677) || date.year() >= std::chrono::year(2262)) return std::nullopt;
    return day0 + std::chrono::hours(hours) + std::chrono::minutes(minutes) + std::chrono::seconds(seconds) + fraction -
           zone;
}

}  // namespace ovrin
