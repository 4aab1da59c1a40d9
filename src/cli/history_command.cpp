#include "cli/history_command.h"

#include <ctime>
#include <string>
#include <string_view>

#include "base/date_time.h"
#include "storage/history_format.h"
#include "storage/history_store.h"

namespace ovrin::cli {

namespace {

// "2026-03-01 17:05" in the time zone of the machine.
std::string localMinute(Timestamp moment) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(moment);
    std::tm local{};
    if (localtime_r(&seconds, &local) == nullptr) return iso8601Text(moment);
    std::string text(sizeof "2026-03-01 17:05", '\0');
    text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local));
    return text;
}

// Every line of the text behind the margin.
std::string indented(std::string_view text, std::string_view margin) {
    std::string result(margin);
    for (const char character : text) {
        result += character;
        if (character == '\n') result += margin;
    }
    return result + '\n';
}

std::string described(const HistoryRecord& record) {
    std::string text = localMinute(record.createdAt) + "  " + record.recordType + '\n';
    text += indented(record.sourceText, "    ");
    if (record.resultText) text += indented(*record.resultText, "  > ");
    return text;
}

}  // namespace

int listHistory(const ListHistory& command, const HistoryStore& history, Terminal& terminal) {
    const HistoryRecords records = history.search(command.query);
    if (command.form == OutputForm::json) {
        terminal.write(encodedHistory(records) + '\n');
        return 0;
    }
    bool isFirst = true;
    for (const auto& record : records) {
        terminal.writeForeign((isFirst ? "" : "\n") + described(*record));
        isFirst = false;
    }
    return 0;
}

}  // namespace ovrin::cli
