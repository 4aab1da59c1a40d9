#include "app/app_state.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/environment.h"
#include "base/error.h"
#include "base/virtual_loop.h"
#include "fakes/deferred.h"
#include "fakes/fake_clipboard_service.h"
#include "fakes/fake_keychain.h"
#include "fakes/fake_language_identifier.h"
#include "fakes/fake_ocr_engine.h"
#include "fakes/fake_presenters.h"
#include "fakes/fake_region_selector.h"
#include "fakes/fake_screen_capture.h"
#include "fakes/fake_selection_access.h"
#include "fakes/journal.h"
#include "fakes/temporary_directory.h"
#include "model/model_client.h"
#include "platform/http_client.h"
#include "recognition/ocr_engine_error.h"
#include "storage/app_config.h"
#include "storage/history_store.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

using Events = std::vector<std::string>;
using AppAction = std::function<void(AppState&)>;

// A model service that answers when the test says.
class DeferredService final : public HTTPClientProtocol {
public:
    Deferred<std::string> answer;
    HTTPRequest lastRequest;

    Task<HTTPData> data(HTTPRequest request) override {
        lastRequest = std::move(request);
        const std::string text = co_await answer.result();
        HTTPData result{.body = R"({"choices":[{"message":{"role":"assistant","content":")" + text + R"("}}]})",
                        .response = {.statusCode = 200, .headers = {}}};
        co_return result;
    }
    Task<HTTPBytes> bytes(HTTPRequest /*request*/) override { throw Error("no stream is expected"); }
};

OCRResult recognized(const std::vector<std::string>& texts, Timestamp createdAt = {}) {
    OCRResult result{.createdAt = createdAt};
    for (const std::string& text : texts) result.paragraphs.push_back({.text = text, .normalizedBoundingBox = {}});
    return result;
}

class AppStateTest : public testing::Test {
protected:
    AppStateTest() {
        defaults_.setString("ovrin.targetLanguage", "fr");
        auto engine = std::make_unique<FakeOCREngine>(journal_);
        auto selector = std::make_unique<FakeRegionSelector>(journal_);
        auto selection = std::make_unique<FakeSelectionAccess>(journal_);
        engine_ = engine.get();
        selector_ = selector.get();
        selection_ = selection.get();
        const ModelClient client(loop_, service_, [this] { return finished(config_.modelAPIConfiguration()); });
        TranslationService translation(
            client, identifier_, [] { return std::string(); }, [] { return Timestamp(); });
        app_ = std::make_unique<AppState>(std::move(engine), std::move(translation), std::move(selector),
                                          std::move(selection),
                                          AppState::Surroundings{.loop = loop_,
                                                                 .screen = screen_,
                                                                 .clipboard = clipboard_,
                                                                 .config = config_,
                                                                 .history = history_,
                                                                 .toasts = toasts_,
                                                                 .notifications = notifications_,
                                                                 .resultPanel = panel_,
                                                                 .translationCard = card_});
        watch();
    }

    // Writes every change into the journal when it is announced, before it takes effect.
    void watch() {
        const auto text = [](const std::optional<std::string>& value) { return value.value_or("none"); };
        subscriptions_.push_back(app_->isCapturing().onWillChange([this](bool value) {
            EXPECT_NE(app_->isCapturing().value(), value);
            journal_.add(value ? "busy" : "idle");
        }));
        subscriptions_.push_back(app_->activityText().onWillChange([this, text](const auto& value) {
            EXPECT_NE(app_->activityText().value(), value);
            journal_.add("activity: " + text(value));
        }));
        subscriptions_.push_back(app_->latestOCRResult().onWillChange(
            [this](const auto& value) { journal_.add("result: " + value->fullText()); }));
        subscriptions_.push_back(
            app_->lastError().onWillChange([this, text](const auto& value) { journal_.add("error: " + text(value)); }));
        subscriptions_.push_back(history_.records().onDidChange([this, text](const HistoryRecords& records) {
            const HistoryRecord& newest = *records.front();
            journal_.add("history " + newest.recordType + ": " + newest.sourceText + " => " + text(newest.resultText));
        }));
    }

    // What happened since the last look, after letting everything posted run.
    Events events() {
        loop_.runPosted();
        return journal_.take();
    }

    void selectRegion(DisplayRect rect = {10, 20, 300, 50}) { std::exchange(selector_->completion, {})(rect); }
    void failSelection(std::exception_ptr failure) { std::exchange(selector_->completion, {})(std::move(failure)); }

    // Up to the wait for the engine.
    void startRecognition(CaptureIntent intent) {
        app_->startCapture(intent);
        selectRegion();
        screen_.picture.succeed(picture_);
        loop_.advance(140ms);
        journal_.take();
    }

    static Events failure(const std::string& text) {
        return {"error: " + text, "toast exclamationmark.triangle: " + text};
    }

    const Image picture_{2, 1, std::vector<std::uint8_t>(8, 255)};
    VirtualLoop loop_;
    Journal journal_;
    TemporaryDirectory directory_;
    Environment environment_{{{"OVRIN_API_KEY", "key"}, {"OVRIN_BASE_URL", "http://localhost/v1"}}};
    DefaultsStore defaults_{directory_.path() / "preferences.json"};
    FakeKeychain keychain_;
    KeychainStore keychainStore_{keychain_};
    AppConfig config_{defaults_, [this] { return environment_; }, keychainStore_};
    HistoryStore history_{directory_.path() / "history.json", text::CaseRules::general, [] { return Timestamp(); }};
    FakeLanguageIdentifier identifier_;
    DeferredService service_;
    FakeScreenCapture screen_{journal_};
    FakeClipboardService clipboard_{journal_};
    FakeToastPresenter toasts_{journal_};
    FakeNotificationCenter notifications_{journal_};
    FakeResultPresenter panel_{journal_};
    FakeTranslationCardPresenter card_{journal_};
    FakeOCREngine* engine_ = nullptr;
    FakeRegionSelector* selector_ = nullptr;
    FakeSelectionAccess* selection_ = nullptr;
    std::unique_ptr<AppState> app_;
    std::vector<Subscription> subscriptions_;
};

TEST_F(AppStateTest, ACaptureTakesItsStepsInOrderAndWaits140Milliseconds) {
    app_->startCapture(CaptureIntent::ocr);
    EXPECT_EQ(events(), (Events{"busy", "activity: 拖拽选择屏幕区域", "selection begins", "engine prepares"}));
    loop_.advance(1h);
    selectRegion({10, 20, 300, 50});
    loop_.advance(140ms - 1ns);
    EXPECT_EQ(events(), Events{"screen prepares"});
    loop_.advance(1ns);
    EXPECT_EQ(events(), Events{"screenshot"});
    EXPECT_EQ(screen_.lastRequest.sourceRect, (LocalRect{10, 20, 300, 50}));
    screen_.picture.succeed(picture_);
    EXPECT_EQ(events(), (Events{"activity: 正在识别文字", "recognition"}));
    EXPECT_EQ(engine_->lastImage.data(), picture_.data());
    engine_->result.succeed(recognized({"早上好", "hello"}));
    EXPECT_EQ(events(),
              (Events{"result: 早上好\nhello", "idle", "activity: none", "history capture-ocr: 早上好\nhello => none",
                      "clipboard: 早上好\nhello", "toast checkmark: 识别结果已复制", "panel: 早上好\nhello"}));
    EXPECT_EQ(panel_.lastImage->data(), picture_.data());
    EXPECT_EQ(app_->lastError().value(), std::nullopt);
}

TEST_F(AppStateTest, EveryIntentHasItsRecordTypeAndItsEnd) {
    const struct {
        CaptureIntent intent;
        std::string recordType;
        std::string end;
    } rows[] = {
        {CaptureIntent::ocr, "capture-ocr", "panel: a\nb"},
        {CaptureIntent::translate, "capture-translation", "panel: a\nb [translating]"},
        {CaptureIntent::silentOCR, "capture-ocr", "notification: 截图 OCR 完成 | 已识别 2 段文字并复制到剪贴板。"},
        {CaptureIntent::whatIsThis, "capture-ai", "panel: a\nb [whatIsThis]"},
    };
    Timestamp resultTime;
    for (const auto& row : rows) {
        startRecognition(row.intent);
        engine_->result.succeed(recognized({"a", "b"}, resultTime += 1s));
        EXPECT_EQ(events(),
                  (Events{"result: a\nb", "idle", "activity: none", "history " + row.recordType + ": a\nb => none",
                          "clipboard: a\nb", "toast checkmark: 识别结果已复制", row.end}));
    }
}

TEST_F(AppStateTest, ASecondCaptureWhileAnythingIsCapturedOrRecognisedDoesNothing) {
    const auto startsNothing = [this] {
        journal_.take();
        app_->startCapture(CaptureIntent::translate);
        EXPECT_EQ(events(), Events{});
    };
    app_->startCapture(CaptureIntent::ocr);
    startsNothing();
    selectRegion();
    startsNothing();
    loop_.advance(140ms);
    startsNothing();
    screen_.picture.succeed(picture_);
    loop_.runPosted();
    startsNothing();
    engine_->result.succeed(recognized({"a"}));
    loop_.runPosted();

    clipboard_.image = picture_;
    app_->clipboardOCR();
    loop_.runPosted();
    startsNothing();
    engine_->result.succeed(recognized({"a"}));
    events();
    app_->startCapture(CaptureIntent::ocr);
    EXPECT_EQ(events().front(), "busy");
}

TEST_F(AppStateTest, WithoutPermissionNoSelectionBegins) {
    screen_.isPermitted = false;
    app_->startCapture(CaptureIntent::ocr);
    app_->startCapture(CaptureIntent::ocr);  // while the user is asked
    EXPECT_EQ(events(), Events{"access requested"});
    screen_.answerToRequest.succeed(false);
    EXPECT_EQ(events(), (Events{"error: 需要授予“屏幕与系统录音”权限后才能截图识别。",
                                "toast exclamationmark.triangle: 需要授予“屏幕与系统录音”权限后才能截图识别。"}));
    EXPECT_FALSE(app_->isCapturing().value());

    screen_.answerToRequest.succeed(true);
    app_->startCapture(CaptureIntent::ocr);
    EXPECT_EQ(events(), (Events{"access requested", "busy", "activity: 拖拽选择屏幕区域", "selection begins",
                                "engine prepares"}));
}

TEST_F(AppStateTest, GivingUpTheSelectionIsSilentAndAFailureOfItIsNot) {
    app_->startCapture(CaptureIntent::ocr);
    events();
    failSelection(std::make_exception_ptr(CancellationError()));
    EXPECT_EQ(events(), (Events{"idle", "activity: none"}));

    app_->startCapture(CaptureIntent::ocr);
    events();
    failSelection(std::make_exception_ptr(Error("no display")));
    EXPECT_EQ(events(),
              (Events{"idle", "activity: none", "error: no display", "toast exclamationmark.triangle: no display"}));
}

TEST_F(AppStateTest, AFailedCaptureEndsTheFlow) {
    app_->startCapture(CaptureIntent::ocr);
    selectRegion();
    loop_.advance(140ms);
    events();
    screen_.picture.fail(Error("the display is gone"));
    EXPECT_EQ(events(), (Events{"idle", "activity: none", "error: the display is gone",
                                "toast exclamationmark.triangle: the display is gone"}));

    app_->startCapture(CaptureIntent::ocr);
    events();
    selectRegion({10, 10, 300, 1});
    EXPECT_EQ(events(), (Events{"idle", "activity: none", "error: 无法读取截图图像。",
                                "toast exclamationmark.triangle: 无法读取截图图像。"}));

    // The user turned down the system's own question: no failure.
    app_->startCapture(CaptureIntent::ocr);
    selectRegion();
    screen_.picture.fail(CancellationError());
    events();
    loop_.advance(140ms);
    EXPECT_EQ(events(), (Events{"screenshot", "idle", "activity: none"}));
}

TEST_F(AppStateTest, AFailedRecognitionLeavesResultHistoryAndClipboardAlone) {
    startRecognition(CaptureIntent::ocr);
    engine_->result.succeed(recognized({"before"}));
    events();
    startRecognition(CaptureIntent::translate);
    engine_->result.fail(OCREngineError::noTextFound());
    EXPECT_EQ(events(), (Events{"idle", "activity: none", "error: 没有在所选区域中识别到文字。",
                                "toast exclamationmark.triangle: 没有在所选区域中识别到文字。"}));
    EXPECT_EQ(app_->latestOCRResult().value()->fullText(), "before");

    // A later success does not clear the error.
    startRecognition(CaptureIntent::ocr);
    engine_->result.succeed(recognized({"after"}));
    events();
    EXPECT_EQ(app_->lastError().value(), "没有在所选区域中识别到文字。");
}

TEST_F(AppStateTest, ClipboardOCRReadsThePictureThere) {
    clipboard_.string = "no picture";
    app_->clipboardOCR();
    EXPECT_EQ(events(), failure("剪贴板中没有可识别的图片。"));

    clipboard_.image = picture_;
    app_->clipboardOCR();
    EXPECT_EQ(events(), (Events{"busy", "activity: 正在识别文字", "recognition"}));
    engine_->result.succeed(recognized({"a"}));
    EXPECT_EQ(events(), (Events{"result: a", "idle", "activity: none", "history capture-ocr: a => none", "clipboard: a",
                                "toast checkmark: 识别结果已复制", "panel: a"}));
}

TEST_F(AppStateTest, WhereThereIsNoClipboardTheTextIsShownAndKeptAllTheSame) {
    clipboard_.absence = "no clipboard";
    startRecognition(CaptureIntent::ocr);
    engine_->result.succeed(recognized({"a"}));
    EXPECT_EQ(events(), (Events{"result: a", "idle", "activity: none", "history capture-ocr: a => none",
                                "toast exclamationmark.triangle: no clipboard", "panel: a"}));
    startRecognition(CaptureIntent::silentOCR);
    engine_->result.succeed(recognized({"b"}));
    EXPECT_EQ(events().back(), "toast exclamationmark.triangle: no clipboard") << "no word of a copy";
}

TEST_F(AppStateTest, ClipboardTranslateTakesAPictureBeforeText) {
    clipboard_.image = picture_;
    clipboard_.string = "text beside it";
    engine_->result.succeed(recognized({"a"}));
    app_->clipboardTranslate();
    EXPECT_EQ(events(), (Events{"busy", "activity: 正在识别文字", "recognition", "result: a", "idle", "activity: none",
                                "history capture-translation: a => none", "clipboard: a",
                                "toast checkmark: 识别结果已复制", "panel: a [translating]"}));
}

TEST_F(AppStateTest, ClipboardTranslateShowsTrimmedTextAndTranslatesIt) {
    clipboard_.string = " \u3000bonjour\n";
    app_->clipboardTranslate();
    EXPECT_EQ(events(),
              (Events{"history clipboard-translation: bonjour => none", "panel: bonjour => ", "panel translates"}));
    panel_.hasViewModel = false;
    app_->clipboardTranslate();
    EXPECT_EQ(events().back(), "panel: bonjour => ");
}

TEST_F(AppStateTest, ClipboardTranslateOfNothingUsableIsAnError) {
    app_->clipboardTranslate();
    EXPECT_EQ(events(), failure("剪贴板中没有可翻译的文本或图片。"));

    // The same again: the error is still the same, but the user is told anew.
    clipboard_.string = " \n\t\u3000";
    app_->clipboardTranslate();
    EXPECT_EQ(events(), Events{"toast exclamationmark.triangle: 剪贴板中没有可翻译的文本或图片。"});

    clipboard_.failure = Error("silent owner");
    app_->clipboardTranslate();
    EXPECT_EQ(events(), failure("silent owner"));
    app_->clipboardOCR();
    EXPECT_EQ(events(), Events{"toast exclamationmark.triangle: silent owner"});
}

TEST_F(AppStateTest, ATranslationThatCannotBePastedIsKeptAndTheUserIsToldWhatToDo) {
    const auto outcome = [this](Replacement replacement) {
        selection_->selection.succeed("hola");
        service_.answer.succeed("salut");
        selection_->replacement.succeed(replacement);
        app_->selectionTranslate({.replace = true});
        const Events seen = events();
        EXPECT_EQ(std::ranges::count(seen, "history selection-replace: hola => salut"), 1);
        return seen.back();
    };
    EXPECT_EQ(outcome(Replacement::offered), "toast checkmark: 译文已复制，按 Ctrl+V 粘贴");
    EXPECT_EQ(outcome(Replacement::refused), "toast exclamationmark.triangle: 此处无法替换选中的文字，译文已复制");
}

TEST_F(AppStateTest, EveryStepOfASelectionFlowMayFail) {
    const auto fails = [this](const std::string& reason) {
        const Events seen = events();
        ASSERT_GE(seen.size(), 3U);
        EXPECT_EQ(Events(seen.end() - 3, seen.end()),
                  (Events{"activity: none", "error: " + reason, "toast exclamationmark.triangle: " + reason}));
        EXPECT_TRUE(history_.records().value().empty());
    };
    selection_->selection.fail(Error("nothing selected"));
    app_->selectionTranslate({.silent = true, .replace = false});
    fails("nothing selected");

    selection_->selection.succeed("hola");
    service_.answer.fail(Error("offline"));
    app_->selectionTranslate({.silent = true, .replace = true});
    fails("网络连接失败：offline");

    selection_->selection.succeed("hola");
    service_.answer.succeed("salut");
    selection_->replacement.fail(Error("not permitted"));
    app_->selectionTranslate({.silent = true, .replace = true});
    fails("not permitted");
}

TEST_F(AppStateTest, FlowsInterleaveWhereTheyWait) {
    selection_->selection.succeed("hola");
    app_->selectionTranslate({.silent = true, .replace = true});
    clipboard_.image = picture_;
    app_->clipboardOCR();
    events();
    EXPECT_EQ(app_->activityText().value(), "正在识别文字");
    service_.answer.succeed("salut");
    selection_->replacement.succeed(Replacement::pasted);
    EXPECT_EQ(events(), (Events{"selection replaced: salut", "history selection-replace: hola => salut",
                                "activity: none", "toast checkmark: 已替换为译文"}));
    EXPECT_TRUE(app_->isCapturing().value());
    engine_->result.succeed(recognized({"a"}));
    EXPECT_EQ(events(), (Events{"result: a", "idle", "history capture-ocr: a => none", "clipboard: a",
                                "toast checkmark: 识别结果已复制", "panel: a"}));
}

TEST_F(AppStateTest, OnlyOneFlowAtATimeBorrowsTheClipboardForTheSelection) {
    app_->selectionTranslate({.silent = true, .replace = true});
    app_->selectionTranslate({.silent = true, .replace = false});
    EXPECT_EQ(events(), (Events{"activity: 正在读取选中文字", "selection read to be replaced"}));
    selection_->selection.succeed("first");
    EXPECT_EQ(events(), (Events{"activity: none", "activity: 正在翻译并替换", "selection read"}));
    service_.answer.succeed("un");
    EXPECT_EQ(events(), Events{});
    selection_->selection.fail(Error("nothing selected"));
    EXPECT_EQ(events(), (Events{"activity: none", "error: nothing selected",
                                "toast exclamationmark.triangle: nothing selected", "selection replaced: un"}));
}

enum class Wait { selection, settling, screenshot, recognition, selectedText, turn, translation, replacement };

class AppStateEndTest : public AppStateTest, public testing::WithParamInterface<Wait> {
protected:
    void reach(Wait wait) {
        switch (wait) {
            case Wait::selection:
                return app_->startCapture(CaptureIntent::ocr);
            case Wait::settling:
                app_->startCapture(CaptureIntent::ocr);
                return selectRegion();
            case Wait::screenshot:
                reach(Wait::settling);
                return loop_.advance(140ms);
            case Wait::recognition:
                return startRecognition(CaptureIntent::ocr);
            case Wait::selectedText:
                return app_->selectionTranslate({.silent = false, .replace = true});
            case Wait::turn:
                reach(Wait::selectedText);
                return reach(Wait::selectedText);
            case Wait::translation:
                selection_->selection.succeed("hola");
                return reach(Wait::selectedText);
            case Wait::replacement:
                service_.answer.succeed("salut");
                return reach(Wait::translation);
        }
    }
};

TEST_P(AppStateEndTest, NothingHappensAfterwards) {
    reach(GetParam());
    events();
    const RegionSelector::Completion completion = selector_->completion;
    app_.reset();

    // Whatever it waited for comes all the same.
    if (completion) completion(DisplayRect{10, 20, 300, 50});
    screen_.picture.succeed(picture_);
    service_.answer.succeed("salut");
    loop_.advance(1h);
    EXPECT_EQ(events(), Events{});
}

INSTANTIATE_TEST_SUITE_P(WhereverItWaits, AppStateEndTest,
                         testing::Values(Wait::selection, Wait::settling, Wait::screenshot, Wait::recognition,
                                         Wait::selectedText, Wait::turn, Wait::translation, Wait::replacement));

}  // namespace
}  // namespace ovrin
