#include "cli/arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/remote_command.h"

namespace ovrin::cli {
namespace {

using testing::HasSubstr;
using testing::Not;

template <typename Command>
Command parsed(const std::vector<std::string>& words) {
    return std::get<Command>(parseArguments(words));
}

std::string usageError(const std::vector<std::string>& words) {
    try {
        parseArguments(words);
    } catch (const UsageError& error) {
        return error.what();
    }
    ADD_FAILURE() << "accepted";
    return {};
}

TEST(Arguments, EachCommandWithItsOptionsInAnyPlace) {
    EXPECT_EQ(std::get<StartAssistant>(parseArguments({})).launch, Launch::byUser);
    EXPECT_EQ(std::get<StartAssistant>(parseArguments({"--autostart"})).launch, Launch::withSession);
    EXPECT_TRUE(std::holds_alternative<ShowVersion>(parseArguments({"--version"})));
    for (const auto& words : {std::vector<std::string>{"--help"}, {"-h"}, {"help"}, {"translate", "--help"}})
        EXPECT_TRUE(std::holds_alternative<ShowHelp>(parseArguments(words)));

    const auto recognize = parsed<Recognize>({"recognize", "a.png", "--json", "-", "--save", "b.png"});
    EXPECT_EQ(recognize.images, (std::vector<std::string>{"a.png", "-", "b.png"}));
    EXPECT_EQ(recognize.form, OutputForm::json);
    EXPECT_EQ(recognize.history, HistoryEntry::save);

    const auto translate = parsed<Translate>({"translate", "good", "--to=ja", "morning"});
    EXPECT_EQ(translate.text, "good morning");
    EXPECT_EQ(translate.targetLanguage, "ja");
    EXPECT_EQ(translate.delivery, AnswerDelivery::pieces);
    EXPECT_EQ(parsed<Translate>({"translate", "--to", "en"}).text, std::nullopt);
    EXPECT_EQ(parsed<Ask>({"ask", "--no-stream", "why", "so?"}).question, "why so?");
    EXPECT_EQ(parsed<Ask>({"ask", "--no-stream"}).delivery, AnswerDelivery::whole);
    EXPECT_EQ(parsed<ListHistory>({"history", "two", "words"}).query, "two words");
    EXPECT_EQ(parsed<Do>({"do", "silent-capture-ocr"}).action, "silent-capture-ocr");
    EXPECT_EQ(parsed<ConfigGet>({"config", "get"}).key, std::nullopt);
    EXPECT_EQ(parsed<ConfigUnset>({"config", "unset", "a"}).key, "a");
}

TEST(Arguments, TwoDashesEndTheOptions) {
    EXPECT_EQ(parsed<Translate>({"translate", "--", "--to", "be"}).text, "--to be");
    EXPECT_EQ(parsed<Recognize>({"recognize", "--", "--json"}).images, std::vector<std::string>{"--json"});
}

TEST(Arguments, PreferenceMayBeginWithADash) {
    EXPECT_EQ(parsed<ConfigSet>({"config", "set", "ovrin.translationPrompt", "- be brief"}).value, "- be brief");
    EXPECT_EQ(parsed<ConfigSet>({"config", "set", "--", "a", "-1"}).value, "-1");
}

TEST(Arguments, MistakesAreNamed) {
    EXPECT_EQ(usageError({"transalte"}), "unknown command transalte");
    EXPECT_EQ(usageError({"recognize"}), "recognize: no image given");
    EXPECT_EQ(usageError({"recognize", "-", "-"}), "recognize: standard input can be read only once");
    EXPECT_EQ(usageError({"recognize", "a.png", "--jsn"}), "recognize: unknown option --jsn");
    EXPECT_EQ(usageError({"translate", "--to"}), "translate: --to needs a value");
    EXPECT_EQ(usageError({"translate", "--to=", "x"}), "translate: --to needs a value");
    EXPECT_EQ(usageError({"config"}), "config: get, set, unset, set-key or unset-key expected");
    EXPECT_EQ(usageError({"config", "list"}), "config: unknown action list");
    EXPECT_EQ(usageError({"config", "set", "key"}), "config set: KEY and VALUE expected");
    EXPECT_EQ(usageError({"config", "get", "a", "b"}), "config get: unexpected argument b");
}

TEST(Arguments, EveryActionOfDoIsNamedInItsHelpAndInItsErrors) {
    EXPECT_THAT(usageError({"do"}), HasSubstr("ACTION expected"));
    for (const std::string& usage : remoteCommandUsages()) {
        EXPECT_THAT(helpText(), HasSubstr(" " + usage));
        EXPECT_THAT(usageError({"do", "nothing"}), HasSubstr(usage));
    }
    EXPECT_EQ(parsed<Do>({"do", "settings", "service"}).action, "settings service");
    EXPECT_EQ(remoteCommand("settings service")->section, SettingsSection::service);
    for (const auto& words : {std::vector<std::string>{"do", "settings", "servic"},
                              {"do", "history", "service"},
                              {"do", "settings", "service", "about"}})
        EXPECT_THAT(usageError(words), HasSubstr("unknown action"));
}

TEST(Arguments, KeyThatIsGivenAsAnArgumentIsNotRepeated) {
    for (const char* const key : {"sk-secret", "-sk-secret", "--key=sk-secret"})
        EXPECT_THAT(usageError({"config", "set-key", key}), Not(HasSubstr("secret")));
}

}  // namespace
}  // namespace ovrin::cli
