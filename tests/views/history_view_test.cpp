#include "views/history/history_view.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "base/files.h"
#include "base/virtual_loop.h"
#include "fakes/fake_clipboard_service.h"
#include "fakes/fake_file_watcher.h"
#include "fakes/fake_presenters.h"
#include "fakes/temporary_directory.h"
#include "storage/history_store.h"
#include "views/components/ov_scroll_area.h"
#include "views/history/history_list.h"
#include "windows/history_view_model.h"

namespace ovrin {
namespace {

class HistoryViewTest : public testing::Test {
protected:
    // Records with the numbers from 0, the oldest, on. The even ones have a result.
    void open(int count) {
        HistoryRecords records;
        for (int number = count - 1; number >= 0; --number) records.push_back(record(std::to_string(number), number));
        files::replaceFile(history.fileURL(), encodedHistory(records), files::Access::onlyUser);
        history.refresh();
        model = std::make_unique<HistoryViewModel>(HistoryViewModel::Services{.loop = loop,
                                                                              .history = history,
                                                                              .files = watcher,
                                                                              .resultPanel = resultPanel,
                                                                              .clipboard = clipboard,
                                                                              .toasts = toasts,
                                                                              .environment = {}});
        view = std::make_unique<HistoryView>(environment, *model, brand);
        view->resize(800, 550);
        view->show();
        QApplication::processEvents();
        list = view->findChild<HistoryList*>();
        search = view->findChild<QLineEdit*>();
        bar = view->findChild<OVScrollArea*>()->verticalScrollBar();
    }
    static std::shared_ptr<const HistoryRecord> record(const std::string& text, int number) {
        const bool hasResult = number % 2 == 0;
        return std::make_shared<const HistoryRecord>(
            HistoryRecord{.id = Uuid::random(),
                          .createdAt = Timestamp(std::chrono::seconds(number)),
                          .sourceText = text,
                          .resultText = hasResult ? std::optional(std::string(20'000, 'x')) : std::nullopt,
                          .recordType = std::string(historyRecordType::captureOCR)});
    }
    void save(const std::string& text) {
        history.save({.sourceText = text, .resultText = {}, .recordType = historyRecordType::captureOCR});
    }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        QKeyEvent down(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(view->focusWidget(), &down);
        QApplication::processEvents();
    }
    std::string focused() const {
        const auto* row = qobject_cast<HistoryRow*>(view->focusWidget());
        return row == nullptr ? "none" : row->record()->sourceText;
    }
    // The first row of which something is in sight, and where it stands in the window.
    HistoryRow* firstInSight() const {
        for (HistoryRow* const row : list->rows()) {
            if (row->geometry().bottom() >= bar->value()) return row;
        }
        return nullptr;
    }
    int placeOf(const HistoryRow& row) const { return row.mapTo(view.get(), QPoint()).y(); }

    VirtualLoop loop;
    TemporaryDirectory directory;
    HistoryStore history{directory.path() / "history.json", text::CaseRules::general, std::chrono::system_clock::now};
    Journal journal;
    FakeFileWatcher watcher;
    FakeResultPresenter resultPanel{journal};
    FakeClipboardService clipboard{journal};
    FakeToastPresenter toasts{journal};
    ViewEnvironment environment;
    Published<std::string> brand{"EntranceIconLight"};
    std::unique_ptr<HistoryViewModel> model;
    std::unique_ptr<HistoryView> view;
    HistoryList* list = nullptr;
    QLineEdit* search = nullptr;
    QScrollBar* bar = nullptr;
};

TEST_F(HistoryViewTest, OnlyRowsInSightExistAsItemsOfAList) {
    open(400);
    bar->setValue(bar->maximum() / 2);
    bar->setValue(bar->maximum() / 2 - 90);  // upwards, so that rows are made out of order
    QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(list);
    EXPECT_EQ(told->role(), QAccessible::List);
    ASSERT_GE(told->childCount(), 4);
    EXPECT_LE(told->childCount(), 8);
    int number = std::stoi(list->rows().front()->record()->sourceText);
    int tabStops = 0;
    for (int index = 0; index < told->childCount(); ++index, --number) {
        const QAccessibleInterface* const item = told->child(index);
        EXPECT_EQ(item->role(), QAccessible::ListItem);
        EXPECT_TRUE(item->text(QAccessible::Name).startsWith("OCR，")) << item->text(QAccessible::Name).toStdString();
        EXPECT_TRUE(item->text(QAccessible::Name).endsWith("，" + QString::number(number)));
        tabStops += (list->rows()[index]->focusPolicy() & Qt::TabFocus) != 0 ? 1 : 0;
    }
    EXPECT_EQ(tabStops, 1);
}

TEST_F(HistoryViewTest, TheKeyboardMovesOpensCopiesAndDeletes) {
    open(40);
    search->setFocus();
    press(Qt::Key_Down);
    EXPECT_EQ(focused(), "39");
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(journal.take()[0].substr(0, 15), "panel: 38 => xx");
    press(Qt::Key_PageDown);
    press(Qt::Key_PageUp);
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    EXPECT_EQ(focused(), "39");
    press(Qt::Key_End);
    EXPECT_EQ(focused(), "0");
    EXPECT_EQ(bar->value(), bar->maximum());
    press(Qt::Key_Delete);
    EXPECT_EQ(focused(), "1");  // nothing follows
    press(Qt::Key_Up);
    press(Qt::Key_Delete);
    EXPECT_EQ(focused(), "1");
    press(Qt::Key_Home);
    EXPECT_EQ(focused(), "39");
    EXPECT_EQ(history.records()->size(), 38U);
    history.deleteAll();
    EXPECT_EQ(view->focusWidget(), search);
}

TEST_F(HistoryViewTest, WhatIsBeingReadStaysWhereItIs) {
    open(40);
    save("new");  // at the top it appears at once
    QApplication::processEvents();
    EXPECT_EQ(firstInSight()->record()->sourceText, "new");

    bar->setValue(1000);
    HistoryRow* const read = firstInSight();
    const int place = placeOf(*read);
    save("newer");
    history.deleteRecord(history.records()->back()->id);
    view->resize(700, 500);
    QApplication::processEvents();
    EXPECT_EQ(firstInSight(), read);
    EXPECT_EQ(placeOf(*read), place);

    search->setFocus();
    bar->setValue(0);
    press(Qt::Key_Down);
    ASSERT_EQ(focused(), "newer");
    const int top = placeOf(*firstInSight());
    save("newest");
    QApplication::processEvents();
    EXPECT_EQ(focused(), "newer");
    EXPECT_EQ(placeOf(*firstInSight()), top);
}

}  // namespace
}  // namespace ovrin
