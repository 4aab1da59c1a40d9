#include "storage/history_record.h"

std::size_t std::hash<ovrin::HistoryRecord>::operator()(const ovrin::HistoryRecord& record) const noexcept {
    std::size_t seed = std::hash<ovrin::Uuid>()(record.id);
    const auto mix = [&seed](std::size_t value) { seed = seed * 1'000'003U + value; };
    mix(std::hash<std::int64_t>()(record.createdAt.time_since_epoch().count()));
    mix(std::hash<std::string>()(record.sourceText));
    mix(std::hash<std::optional<std::string>>()(record.resultText));
    mix(std::hash<std::string>()(record.recordType));
    return seed;
}
