#include "app/deferred_writes.h"

#include <chrono>
#include <fstream>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "base/virtual_loop.h"
#include "fakes/temporary_directory.h"
#include "storage/defaults_store.h"
#include "storage/history_store.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;

// Two stores of the assistant, and another process that holds or writes their files.
class DeferredWritesTest : public testing::Test {
protected:
    DeferredWritesTest() {
        defaults.deferChanges(1ms, writes->note());
        history.deferChanges(1ms, writes->note());
        defaults.setString("own", "before");
    }

    std::string inFile(const std::filesystem::path& file) { return files::readFile(file, 1U << 20U); }

    void changeBoth() {
        defaults.setString("own", "after");
        history.save({.sourceText = "a text", .resultText = std::nullopt, .recordType = "direct-ai"});
        EXPECT_THAT(defaults.string("own"), Optional(std::string("after"))) << "it counts at once";
        EXPECT_EQ(history.records()->size(), 1);
    }
    void expectBothWritten() {
        EXPECT_THAT(inFile(preferences), AllOf(HasSubstr("after"), HasSubstr("another process")));
        EXPECT_THAT(inFile(records), HasSubstr("a text"));
        EXPECT_EQ(defaults.string("other"), "another process");
    }

    TemporaryDirectory directory;
    std::filesystem::path preferences = directory.path() / "preferences.json";
    std::filesystem::path records = directory.path() / "history.json";
    VirtualLoop loop;
    DefaultsStore defaults{preferences};
    HistoryStore history{records, text::CaseRules::general, std::chrono::system_clock::now};
    std::unique_ptr<DeferredWrites> writes = std::make_unique<DeferredWrites>(
        loop, std::vector<DeferredWrites::Write>{[this](auto /*patience*/) { return defaults.writeDeferred(0ms); },
                                                 [this](auto /*patience*/) { return history.writeDeferred(0ms); }});
};

TEST_F(DeferredWritesTest, WhatAHolderOfFiveSecondsKeptBackIsWrittenAndMerged) {
    auto ofPreferences = std::make_unique<files::FileLock>(preferences);
    auto ofHistory = std::make_unique<files::FileLock>(records);
    changeBoth();
    loop.advance(5s);
    EXPECT_THAT(inFile(preferences), Not(HasSubstr("after")));
    std::ofstream(preferences) << R"({"own": "before", "other": "another process"})";
    ofPreferences.reset();
    ofHistory.reset();
    EXPECT_TRUE(history.hasUnwrittenChanges());
    loop.advance(1s);
    expectBothWritten();
    EXPECT_FALSE(history.hasUnwrittenChanges());
}

TEST_F(DeferredWritesTest, TheEndTriesOnceMore) {
    auto ofPreferences = std::make_unique<files::FileLock>(preferences);
    auto ofHistory = std::make_unique<files::FileLock>(records);
    changeBoth();
    std::ofstream(preferences) << R"({"other": "another process"})";
    ofPreferences.reset();
    ofHistory.reset();
    writes.reset();
    expectBothWritten();
    loop.advance(1h);
}

}  // namespace
}  // namespace ovrin
