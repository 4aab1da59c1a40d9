#include "windows/history_view_model.h"

#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/run_loop.h"
#include "fakes/fake_clipboard_service.h"
#include "fakes/fake_file_watcher.h"
#include "fakes/fake_presenters.h"
#include "fakes/journal.h"
#include "fakes/temporary_directory.h"
#include "storage/history_store.h"

namespace ovrin {
namespace {

using Strings = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

Strings sources(const HistoryRecords& records) {
    Strings texts;
    for (const auto& record : records) texts.push_back(record->sourceText);
    return texts;
}

class HistoryViewModelTest : public testing::Test {
protected:
    HistoryStore open() {
        return HistoryStore(directory.path() / "history.json", text::CaseRules::general,
                            [this] { return now += std::chrono::seconds(1); });
    }
    HistoryViewModel::Services services() {
        return {.loop = loop,
                .history = history,
                .files = files,
                .resultPanel = resultPanel,
                .clipboard = clipboard,
                .toasts = toasts,
                .environment = {}};
    }
    static void save(HistoryStore& store, const std::string& source, std::optional<std::string> result = {},
                     std::string_view type = historyRecordType::captureOCR) {
        store.save({.sourceText = source, .resultText = std::move(result), .recordType = type});
    }
    Strings shown() const { return sources(model->filtered().value()); }
    // Runs the loop until the list becomes another one.
    void waitForList() {
        const auto changes = model->filtered().onDidChange([this](const auto&) { loop.quit(); });
        loop.run();
    }

    RunLoop loop;
    TemporaryDirectory directory;
    Timestamp now = *parseIso8601("2026-03-01T09:05:07Z");
    Journal journal;
    HistoryStore history = open();
    FakeFileWatcher files;
    FakeResultPresenter resultPanel{journal};
    FakeClipboardService clipboard{journal};
    FakeToastPresenter toasts{journal};
    std::unique_ptr<HistoryViewModel> model = std::make_unique<HistoryViewModel>(services());
};

TEST_F(HistoryViewModelTest, LabelFilterAndEmptyStateFollowTheirOwnRules) {
    const std::vector<std::string> types{"capture-ocr",
                                         "capture-translation",
                                         "capture-ai",
                                         "clipboard-translation",
                                         "selection-translation",
                                         "selection-replace",
                                         "direct-ai",
                                         "input-translation",
                                         "ai-replace",
                                         "OCR"};
    std::string labels;
    for (const std::string& type : types) {
        save(history, type, {}, type);
        labels += std::string(label(historyKind(type))) + " ";
    }
    EXPECT_EQ(labels, "OCR 翻译 AI 翻译 翻译 替换 AI 翻译 AI 翻译 ");

    model->selectFilter(HistoryFilter::translation);
    EXPECT_TRUE(model->movesForward());
    EXPECT_THAT(shown(), ElementsAre("input-translation", "selection-translation", "clipboard-translation",
                                     "capture-translation"));
    model->selectFilter(HistoryFilter::replace);
    EXPECT_THAT(shown(), ElementsAre("ai-replace", "selection-replace"));
    model->selectFilter(HistoryFilter::ai);
    EXPECT_FALSE(model->movesForward());
    EXPECT_THAT(shown(), ElementsAre("ai-replace", "direct-ai", "capture-ai"));
    model->selectFilter(HistoryFilter::ocr);
    EXPECT_THAT(shown(), ElementsAre("capture-ocr"));

    history.deleteRecord(history.records()->back()->id);
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_EQ(model->emptyHeadline(), "还没有历史记录");
    model->setSearchText(" ");
    EXPECT_EQ(model->emptyHeadline(), "没有匹配的记录");
}

TEST_F(HistoryViewModelTest, OnlyTheListOfTheLastQueryArrives) {
    save(history, "one", "eins");
    save(history, "two", "ZWEI");
    std::vector<Strings> lists;
    const auto changes =
        model->filtered().onDidChange([&](const HistoryRecords& records) { lists.push_back(sources(records)); });
    model->setSearchText("one");
    model->setSearchText("eins");
    model->setSearchText("zwei");
    EXPECT_EQ(shown(), (Strings{"two", "one"}));
    waitForList();
    EXPECT_EQ(lists, (std::vector<Strings>{{"two"}}));
    EXPECT_EQ(model->filtered()->front(), history.records()->front());  // the same object

    // Without a query nothing has to be looked for.
    model->setSearchText("one");
    model->setSearchText("");
    EXPECT_EQ(shown(), (Strings{"two", "one"}));
}

TEST_F(HistoryViewModelTest, ASearchedListFollowsEveryFlow) {
    save(history, "apple 1");
    save(history, "pear");
    save(history, "apple 2");
    model->setSearchText("apple");
    waitForList();
    model->deleteRecord(model->filtered()->back()->id);
    EXPECT_EQ(shown(), Strings{"apple 2"});  // at once
    save(history, "apple 3");
    history.updateLatestResult("pear", "no apple");
    waitForList();
    EXPECT_EQ(shown(), (Strings{"apple 3", "apple 2", "pear"}));
}

TEST_F(HistoryViewModelTest, EverythingIsDeletedOnlyOnceItWasConfirmed) {
    EXPECT_FALSE(model->canDeleteAll().value());
    model->askToDeleteAll();
    EXPECT_FALSE(model->confirmsDeleteAll().value());
    save(history, "one");
    EXPECT_TRUE(model->canDeleteAll().value());
    model->askToDeleteAll();
    model->cancelDeleteAll();
    EXPECT_EQ(shown(), Strings{"one"});
    model->askToDeleteAll();
    EXPECT_TRUE(model->confirmsDeleteAll().value());
    // What another process adds in the meantime was not meant to be kept, what it adds afterwards is.
    model->deleteAll();
    EXPECT_FALSE(model->confirmsDeleteAll().value());
    EXPECT_THAT(shown(), IsEmpty());
    HistoryStore other = open();
    save(other, "two");
    save(history, "three");
    EXPECT_EQ(shown(), (Strings{"three", "two"}));
}

TEST_F(HistoryViewModelTest, OtherProcessesAreFollowedWhileTheWindowIsVisible) {
    EXPECT_EQ(files.watches, 0);
    HistoryStore other = open();
    save(other, "before");
    model->setVisible(true);
    EXPECT_EQ(files.watches, 1);
    EXPECT_EQ(files.watched, history.fileURL());
    waitForList();
    save(other, "live");
    files.tellOfChange();
    waitForList();
    EXPECT_EQ(shown(), (Strings{"live", "before"}));

    // A damaged file is not shown, and not lost with the next change either.
    std::ofstream(history.fileURL()) << "{";
    files.tellOfChange();
    WorkerExecutor worker(1);
    loop.complete(history.refreshOn(worker));
    EXPECT_EQ(shown(), (Strings{"live", "before"}));
    model->deleteRecord(model->filtered()->back()->id);
    EXPECT_THAT(sources(open().records().value()), ElementsAre("live"));
    EXPECT_TRUE(std::filesystem::exists(history.fileURL().string() + ".unreadable"));

    model->setVisible(false);
    EXPECT_EQ(files.watches, 0);
}

}  // namespace
}  // namespace ovrin
