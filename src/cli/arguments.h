// What the user typed after "ovrin", understood: one value per command.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "platform/launch.h"

namespace ovrin::cli {

// The arguments make no sense; what() is one line for standard error. Ends with exit status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class OutputForm { text, json };
enum class HistoryEntry { leave, save };
enum class AnswerDelivery { pieces, whole };  // as they arrive, or all at once at the end

struct ShowHelp {};
struct ShowVersion {};
struct StartAssistant {
    Launch launch = Launch::byUser;
};

struct Recognize {
    std::vector<std::string> images;  // paths as typed; "-" is standard input
    OutputForm form = OutputForm::text;
    HistoryEntry history = HistoryEntry::leave;
};

struct ListHistory {
    std::string query;  // empty: everything
    OutputForm form = OutputForm::text;
};

struct Translate {
    std::optional<std::string> text;            // none: standard input
    std::optional<std::string> targetLanguage;  // BCP-47 tag; none: the stored default
    AnswerDelivery delivery = AnswerDelivery::pieces;
};

struct Ask {
    std::optional<std::string> question;  // none: standard input
    AnswerDelivery delivery = AnswerDelivery::pieces;
};

struct Do {
    std::string action;           // the words of app/remote_command.h
    bool startsAssistant = true;  // where none runs
};

struct Doctor {
    OutputForm form = OutputForm::text;
};

struct ConfigGet {
    std::optional<std::string> key;  // none: all that are set
};
struct ConfigSet {
    std::string key;
    std::string value;
};
struct ConfigUnset {
    std::string key;
};
struct ConfigSetKey {};
struct ConfigUnsetKey {};

using Invocation = std::variant<ShowHelp, ShowVersion, StartAssistant, Recognize, ListHistory, Translate, Ask, Do,
                                Doctor, ConfigGet, ConfigSet, ConfigUnset, ConfigSetKey, ConfigUnsetKey>;

// words: the arguments without the program's name. "--" ends the options of a command. Throws UsageError.
Invocation parseArguments(std::vector<std::string> words);

// The text of --help.
std::string helpText();

}  // namespace ovrin::cli
