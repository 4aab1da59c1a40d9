#include "cli/arguments.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

#include "app/remote_command.h"

namespace ovrin::cli {

namespace {

using Words = std::vector<std::string>;

// The words of one command, split into options and operands.
class CommandWords {
public:
    CommandWords(std::string command, Words words) : command_(std::move(command)), words_(std::move(words)) {}

    // Takes out a flag; true when it was there.
    bool takeFlag(const std::string& name) {
        const auto end = optionsEnd();
        const auto found = std::find(words_.begin(), end, name);
        if (found == end) return false;
        words_.erase(found);
        return true;
    }

    // Takes out "NAME VALUE" or "NAME=VALUE".
    std::optional<std::string> takeValue(const std::string& name) {
        for (auto word = words_.begin(); word != optionsEnd(); ++word) {
            if (word->starts_with(name + "=")) {
                std::string value = word->substr(name.size() + 1);
                words_.erase(word);
                return requireValue(name, std::move(value));
            }
            if (*word == name) {
                if (word + 1 == words_.end()) throw UsageError(command_ + ": " + name + " needs a value");
                std::string value = *(word + 1);
                words_.erase(word, word + 2);
                return requireValue(name, std::move(value));
            }
        }
        return std::nullopt;
    }

    // What is left once every option was taken. A left-over option is an error.
    Words takeOperands() {
        const auto separator = optionsEnd();
        for (auto word = words_.begin(); word != separator; ++word) {
            if (word->size() > 1 && word->front() == '-') throw UsageError(command_ + ": unknown option " + *word);
        }
        if (separator != words_.end()) words_.erase(separator);
        return std::move(words_);
    }

    // Takes out the first word; empty when there is none.
    std::string takeFirst() {
        if (words_.empty()) return {};
        std::string first = std::move(words_.front());
        words_.erase(words_.begin());
        return first;
    }

    // All that is left, whether it looks like an option or not.
    Words takeLiterally() {
        const auto separator = optionsEnd();
        if (separator != words_.end()) words_.erase(separator);
        return std::move(words_);
    }

private:
    Words::iterator optionsEnd() { return std::find(words_.begin(), words_.end(), "--"); }

    std::string requireValue(const std::string& name, std::string value) const {
        if (value.empty()) throw UsageError(command_ + ": " + name + " needs a value");
        return value;
    }

    std::string command_;
    Words words_;
};

std::string joined(const Words& words, const char* separator = " ") {
    std::string text;
    for (const std::string& word : words) {
        if (!text.empty()) text += separator;
        text += word;
    }
    return text;
}

// The actions of "do" as lines that a terminal of 120 columns holds.
std::string actionLines() {
    constexpr std::size_t longestLine = 118;
    std::string lines;
    std::string line = "Actions of do:";
    for (const std::string& usage : remoteCommandUsages()) {
        if (line.size() + usage.size() + 2 > longestLine) {
            lines += line + "\n";
            line = " ";
        }
        line += " " + usage + ",";
    }
    line.back() = '.';
    return lines + line + "\n";
}

std::optional<std::string> joinedIfAny(const Words& words) {
    if (words.empty()) return std::nullopt;
    return joined(words);
}

void requireNoMore(const std::string& command, const Words& words) {
    if (!words.empty()) throw UsageError(command + ": unexpected argument " + words.front());
}

OutputForm takeForm(CommandWords& words) {
    return words.takeFlag("--json") ? OutputForm::json : OutputForm::text;
}

Invocation parseRecognize(CommandWords words) {
    Recognize command;
    command.form = takeForm(words);
    command.history = words.takeFlag("--save") ? HistoryEntry::save : HistoryEntry::leave;
    command.images = words.takeOperands();
    if (command.images.empty()) throw UsageError("recognize: no image given");
    if (std::ranges::count(command.images, "-") > 1)
        throw UsageError("recognize: standard input can be read only once");
    return command;
}

Invocation parseHistory(CommandWords words) {
    ListHistory command;
    command.form = takeForm(words);
    command.query = joined(words.takeOperands());
    return command;
}

AnswerDelivery takeDelivery(CommandWords& words) {
    return words.takeFlag("--no-stream") ? AnswerDelivery::whole : AnswerDelivery::pieces;
}

Invocation parseTranslate(CommandWords words) {
    Translate command;
    command.targetLanguage = words.takeValue("--to");
    command.delivery = takeDelivery(words);
    command.text = joinedIfAny(words.takeOperands());
    return command;
}

Invocation parseAsk(CommandWords words) {
    Ask command;
    command.delivery = takeDelivery(words);
    command.question = joinedIfAny(words.takeOperands());
    return command;
}

Invocation parseDo(CommandWords commandWords) {
    const Words words = commandWords.takeOperands();
    if (words.empty()) throw UsageError("do: ACTION expected, one of " + joined(remoteCommandUsages(), ", "));
    const std::string action = joined(words);
    if (!remoteCommand(action)) {
        throw UsageError("do: unknown action " + action + "; there is " + joined(remoteCommandUsages(), ", "));
    }
    // Without an assistant there is nothing to end and nothing to renew.
    return Do{.action = action, .startsAssistant = action != "quit" && action != "reload"};
}

Invocation parseDoctor(CommandWords words) {
    Doctor command;
    command.form = takeForm(words);
    requireNoMore("doctor", words.takeOperands());
    return command;
}

Invocation parseConfigGet(CommandWords commandWords) {
    const Words words = commandWords.takeOperands();
    if (words.size() > 1) requireNoMore("config get", {words.begin() + 1, words.end()});
    return ConfigGet{.key = joinedIfAny(words)};
}

// A value may begin with a dash: a number below zero, a prompt that is a list.
Invocation parseConfigSet(CommandWords commandWords) {
    const Words words = commandWords.takeLiterally();
    if (words.size() != 2) throw UsageError("config set: KEY and VALUE expected");
    return ConfigSet{.key = words[0], .value = words[1]};
}

Invocation parseConfigUnset(CommandWords commandWords) {
    const Words words = commandWords.takeOperands();
    if (words.size() != 1) throw UsageError("config unset: KEY expected");
    return ConfigUnset{.key = words[0]};
}

Invocation parseConfigSetKey(CommandWords commandWords) {
    // A rejected argument is probably the key itself: it is not repeated.
    if (!commandWords.takeLiterally().empty())
        throw UsageError("config set-key: the key is read from standard input, not from an argument");
    return ConfigSetKey{};
}

Invocation parseConfigUnsetKey(CommandWords commandWords) {
    requireNoMore("config unset-key", commandWords.takeOperands());
    return ConfigUnsetKey{};
}

using Parsers = std::map<std::string, std::function<Invocation(CommandWords)>>;

Invocation parseConfig(CommandWords words) {
    static const Parsers parsers{
        {"get", parseConfigGet},
        {"set", parseConfigSet},
        {"unset", parseConfigUnset},
        {"set-key", parseConfigSetKey},
        {"unset-key", parseConfigUnsetKey},
    };
    const std::string action = words.takeFirst();
    if (action.empty()) throw UsageError("config: get, set, unset, set-key or unset-key expected");
    const auto parser = parsers.find(action);
    if (parser == parsers.end()) throw UsageError("config: unknown action " + action);
    return parser->second(std::move(words));
}

}  // namespace

Invocation parseArguments(std::vector<std::string> words) {
    if (words.empty()) return StartAssistant{};
    const std::string command = words.front();
    words.erase(words.begin());
    if (command == "--help" || command == "-h" || command == "help") return ShowHelp{};
    if (command == "--version") return ShowVersion{};
    if (command == "--autostart") {
        requireNoMore(command, words);
        return StartAssistant{.launch = Launch::withSession};
    }
    // Written in the bus's service file alone.
    if (command == "--bus-activated") {
        requireNoMore(command, words);
        return StartAssistant{.launch = Launch::byBus};
    }

    static const Parsers parsers{
        {"recognize", parseRecognize},
        {"history", parseHistory},
        {"translate", parseTranslate},
        {"ask", parseAsk},
        {"do", parseDo},
        {"doctor", parseDoctor},
        {"config", parseConfig},
    };
    const auto parser = parsers.find(command);
    if (parser == parsers.end()) throw UsageError("unknown command " + command);

    CommandWords commandWords(command, std::move(words));
    if (commandWords.takeFlag("--help") || commandWords.takeFlag("-h")) return ShowHelp{};
    return parser->second(std::move(commandWords));
}

std::string helpText() {
    return R"(Ovrin reads the text on the screen, and translates and explains it.

Usage:
  ovrin                                        start the assistant, or bring the running one forward
  ovrin --autostart                            start it with the session, and leave a running one alone
  ovrin recognize IMAGE... [--json] [--save]   print the text of pictures; "-" is standard input
  ovrin translate [--to TAG] [TEXT]            translate TEXT, or standard input, as the answer streams in
  ovrin ask [QUESTION]                         ask a question, or standard input
  ovrin history [QUERY] [--json]               past results, newest first
  ovrin do ACTION                              have the assistant do something, started if it does not run (see below)
  ovrin doctor [--json]                        what this session can do, and by what
  ovrin config get [KEY]                       show preferences
  ovrin config set KEY VALUE                   change a preference
  ovrin config unset KEY                       go back to its default
  ovrin config set-key | unset-key             store the API key read from standard input, or forget it
  ovrin --help | --version

Options:
  --json       JSON instead of text; of recognize, one line for each picture
  --save       keep the recognised text in the history
  --to TAG     target language, such as zh-Hans, en or ja
  --no-stream  print the answer of translate or ask when it is complete

)" + actionLines() +
           R"(  reload takes over what "ovrin config" has changed, which also asks for it by itself.

Pictures may be PNG, JPEG, WebP, BMP, GIF or TIFF.
The model service comes from the preferences, or from OVRIN_BASE_URL, OVRIN_API_KEY and OVRIN_API_STANDARD.
OVRIN_APPEARANCE (system, light or dark) goes before the preference ovrin.appearanceMode.
Exit status: 0 done, 1 failed, 2 wrong usage, 130 interrupted.
)";
}

}  // namespace ovrin::cli
