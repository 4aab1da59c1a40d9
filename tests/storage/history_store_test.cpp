#include "storage/history_store.h"

#include <csignal>
#include <fstream>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/json.h"
#include "base/run_loop.h"
#include "base/worker_executor.h"
#include "fakes/temporary_directory.h"

namespace ovrin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
using ::testing::SizeIs;

std::vector<std::string> sources(const HistoryRecords& records) {
    std::vector<std::string> texts;
    texts.reserve(records.size());
    for (const auto& record : records) texts.push_back(record->sourceText);
    return texts;
}

std::string recordText(int number, const std::string& time, const std::string& source) {
    char id[37];
    std::snprintf(id, sizeof id, "00000000-0000-4000-8000-%012d", number);
    return R"({"id":")" + std::string(id) + R"(","createdAt":")" + time + R"(","sourceText":")" + source +
           R"(","recordType":"capture-ocr","later":1})";
}

class HistoryStoreTest : public ::testing::Test {
protected:
    std::unique_ptr<HistoryStore> open() {
        return std::make_unique<HistoryStore>(file, text::CaseRules::general, [this] { return now; });
    }
    void write(std::string_view bytes) {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
    }
    std::string content(const std::string& suffix = "") { return files::readFile(file.string() + suffix, 64U << 20U); }
    void save(HistoryStore& store, const std::string& source, std::optional<std::string> result = {}) {
        now += std::chrono::seconds(1);
        store.save({.sourceText = source, .resultText = std::move(result), .recordType = "direct-ai"});
    }

    TemporaryDirectory directory;
    std::filesystem::path file = directory.path() / "data" / "Ovrin" / "history.json";
    Timestamp now = *parseIso8601("2026-03-01T09:05:07.5Z");
};

TEST_F(HistoryStoreTest, ASavedRecordIsAtTheFrontAndOnTheDisk) {
    const auto store = open();
    store->save({.sourceText = "one", .resultText = std::nullopt, .recordType = historyRecordType::captureOCR});
    store->save({.sourceText = "译", .resultText = "two", .recordType = historyRecordType::directAI});
    EXPECT_THAT(sources(store->records().value()), ElementsAre("译", "one"));
    EXPECT_EQ(store->records()->front()->createdAt, now);

    const auto written = json::parseOrThrow(content());
    const Uuid id = store->records()->back()->id;
    EXPECT_EQ(json::encoded(written[1]), R"({"createdAt":"2026-03-01T09:05:07Z","id":")" + id.text() +
                                             R"(","recordType":"capture-ocr","sourceText":"one"})");
    EXPECT_EQ(json::string(written[0], "resultText"), "two");
    EXPECT_THAT(sources(open()->records().value()), ElementsAre("译", "one"));
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(HistoryStoreTest, KeepsTheFiveHundredNewest) {
    std::string document = "[";
    for (int number = 0; number < 600; ++number) {
        document += (number == 0 ? "" : ",") + recordText(number, "2026-01-01T00:00:00Z", "s" + std::to_string(number));
    }
    write(document + "]");
    const auto store = open();
    EXPECT_THAT(store->records().value(), SizeIs(600));
    save(*store, "new");
    EXPECT_THAT(store->records().value(), SizeIs(500));
    EXPECT_EQ(store->records()->front()->sourceText, "new");
    EXPECT_EQ(store->records()->back()->sourceText, "s498");
    EXPECT_THAT(open()->records().value(), SizeIs(500));
}

TEST_F(HistoryStoreTest, LoadsNewestFirstAndKeepsTheOrderWithinASecond) {
    write("[" + recordText(1, "2026-01-01T00:00:00Z", "old") + "," + recordText(2, "2026-01-02T00:00:00Z", "first") +
          "," + recordText(3, "2026-01-02T08:00:00+08:00", "second") + "]");
    EXPECT_THAT(sources(open()->records().value()), ElementsAre("first", "second", "old"));
}

TEST_F(HistoryStoreTest, OneMalformedRecordMakesTheFileUnreadableAndItIsKept) {
    const std::string good = recordText(1, "2026-01-01T00:00:00Z", "kept");
    const std::string documents[] = {
        "[" + good +
            R"(,{"id":"00000000-0000-4000-8000-000000000002","createdAt":"2026-01-01T00:00:00Z","sourceText":""}])",
        "[" + good + "," + recordText(2, "yesterday", "x") + "]",
        good,
        "[" + good,
        "",
        "[\"\xFF\"]"};
    int number = 0;
    for (const std::string& document : documents) {
        write(document);
        const auto store = open();
        EXPECT_THAT(store->records().value(), IsEmpty()) << document;
        EXPECT_EQ(content(), document);
        save(*store, "new");
        save(*store, "newer");
        const std::string suffix = number == 0 ? ".unreadable" : ".unreadable." + std::to_string(number);
        EXPECT_EQ(content(suffix), document);
        EXPECT_THAT(sources(open()->records().value()), ElementsAre("newer", "new"));
        ++number;
    }
    EXPECT_FALSE(std::filesystem::exists(file.string() + ".unreadable.6"));
}

TEST_F(HistoryStoreTest, ClearingLeavesNoCopyOfWhatCouldNotBeRead) {
    write("[broken");
    const auto store = open();
    save(*store, "new");
    ASSERT_TRUE(std::filesystem::exists(file.string() + ".unreadable"));
    write("[broken again");
    store->deleteAll();
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
        EXPECT_EQ(entry.path().string().find("unreadable"), std::string::npos);
    }
    EXPECT_EQ(content(), "[]");
}

TEST_F(HistoryStoreTest, AResultGoesToTheNewestRecordWithTheSameSource) {
    const auto store = open();
    save(*store, "caf\u00E9", "old");
    save(*store, "other");
    save(*store, "cafe\u0301");
    const auto identity = store->records()->front()->id;
    store->updateLatestResult("caf\u00E9", "new");
    EXPECT_THAT(store->records()->front()->resultText, Optional(std::string("new")));
    EXPECT_EQ(store->records()->front()->id, identity);
    EXPECT_THAT(store->records()->back()->resultText, Optional(std::string("old")));
    EXPECT_THAT(open()->records()->front()->resultText, Optional(std::string("new")));

    const auto before = files::Stamp::of(file);
    store->updateLatestResult("cafe", "none");
    EXPECT_EQ(files::Stamp::of(file), before);
}

TEST_F(HistoryStoreTest, SearchLooksIntoBothTexts) {
    const auto store = open();
    save(*store, "The Word");
    save(*store, "中文", "a WORD of it");
    save(*store, "nothing", "résumé");
    EXPECT_THAT(sources(store->search("word")), ElementsAre("中文", "The Word"));
    EXPECT_THAT(sources(store->search(" word")), ElementsAre("中文", "The Word"));
    EXPECT_THAT(sources(store->search(" the")), IsEmpty());
    EXPECT_THAT(sources(store->search("RÉSUMÉ")), ElementsAre("nothing"));
    EXPECT_THAT(sources(store->search("resume")), IsEmpty());
    EXPECT_THAT(store->search(" \n\u3000"), SizeIs(3));
}

TEST_F(HistoryStoreTest, DeletingRewritesTheFileEvenWhenNothingMatched) {
    const auto store = open();
    save(*store, "one");
    save(*store, "two");
    std::filesystem::remove(file);
    store->deleteRecord(Uuid::random());
    EXPECT_THAT(sources(open()->records().value()), ElementsAre("two", "one"));
    store->deleteRecord(store->records()->back()->id);
    EXPECT_THAT(sources(open()->records().value()), ElementsAre("two"));
    store->deleteAll();
    EXPECT_THAT(store->records().value(), IsEmpty());
    EXPECT_EQ(content(), "[]");
}

TEST_F(HistoryStoreTest, MalformedTextIsRepairedInTheFile) {
    const auto store = open();
    save(*store, "a\xFF");
    EXPECT_THAT(sources(open()->records().value()), ElementsAre("a\uFFFD"));
}

TEST_F(HistoryStoreTest, TwoStoresOnOneFileLoseNothingOfEachOther) {
    const auto assistant = open();
    save(*assistant, "one");
    const auto command = open();
    save(*command, "two");
    save(*assistant, "three");
    EXPECT_THAT(sources(assistant->records().value()), ElementsAre("three", "two", "one"));
    assistant->deleteRecord(assistant->records()->back()->id);
    save(*command, "four");
    command->updateLatestResult("three", "result");
    assistant->refresh();
    EXPECT_THAT(sources(assistant->records().value()), ElementsAre("four", "three", "two"));
    EXPECT_THAT(assistant->records().value()[1]->resultText, Optional(std::string("result")));
    assistant->deleteAll();
    command->refresh();
    EXPECT_THAT(command->records().value(), IsEmpty());
}

TEST_F(HistoryStoreTest, ReadingOnAWorkerGivesWayToAChangeMadeMeanwhile) {
    const auto assistant = open();
    save(*assistant, "one");
    const auto other = open();
    save(*other, "two");
    RunLoop loop;
    WorkerExecutor worker(1);
    RunningTask reading(loop, assistant->refreshOn(worker));
    reading.onDone([&] { loop.quit(); });
    reading.start();
    EXPECT_THAT(sources(assistant->records().value()), ElementsAre("one"));
    save(*assistant, "three");
    loop.run();
    EXPECT_THAT(sources(assistant->records().value()), ElementsAre("three", "two", "one"));

    save(*other, "four");
    loop.complete(assistant->refreshOn(worker));
    EXPECT_THAT(sources(assistant->records().value()), ElementsAre("four", "three", "two", "one"));
}

TEST_F(HistoryStoreTest, ManyProcessesThatSaveLoseNothing) {
    constexpr int writers = 4;
    constexpr int saves = 15;
    std::vector<pid_t> children;
    for (int writer = 0; writer < writers; ++writer) {
        children.push_back(::fork());
        if (children.back() != 0) continue;
        const auto store = open();
        for (int index = 0; index < saves; ++index) save(*store, std::to_string(writer) + "." + std::to_string(index));
        ::_exit(0);
    }
    for (const pid_t child : children) {
        int status = -1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_THAT(open()->records().value(), SizeIs(writers * saves));
}

// What could not be written (here: a file may not grow beyond 2000 bytes) reaches the file with the next change, even
// when another process has written meanwhile.
TEST_F(HistoryStoreTest, ChangesThatCouldNotBeWrittenAreMadeUpFor) {
    const auto store = open();
    save(*store, "one");
    save(*store, "two");
    save(*store, "three");
    const Uuid two = store->records().value()[1]->id;

    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{2000, limit.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    save(*store, std::string(3000, 'x'));
    store->deleteRecord(two);
    store->updateLatestResult("one", "result");
    ::setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_THAT(store->records().value(), SizeIs(3));
    EXPECT_THAT(sources(open()->records().value()), ElementsAre("three", "two", "one"));

    const auto other = open();
    save(*other, "theirs");
    save(*store, "mine");
    const std::vector<std::string> all{"mine", "theirs", std::string(3000, 'x'), "three", "one"};
    EXPECT_EQ(sources(store->records().value()), all);
    EXPECT_EQ(sources(open()->records().value()), all);
    EXPECT_THAT(open()->records()->back()->resultText, Optional(std::string("result")));
}

TEST_F(HistoryStoreTest, WithoutAFolderTheHistoryLivesInMemory) {
    std::ofstream(directory.path() / "data") << "a file where a folder should be";
    const auto store = open();
    save(*store, "one");
    store->updateLatestResult("one", "1");
    EXPECT_THAT(sources(store->records().value()), ElementsAre("one"));
    std::filesystem::remove(directory.path() / "data");
    save(*store, "two");
    EXPECT_THAT(sources(open()->records().value()), ElementsAre("two", "one"));
}

}  // namespace
}  // namespace ovrin
