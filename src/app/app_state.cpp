#include "app/app_state.h"

#include <chrono>
#include <string_view>
#include <utility>
#include <variant>

#include "base/suspension.h"
#include "base/text.h"
#include "base/uuid.h"
#include "platform/clipboard_service.h"
#include "platform/notification_center.h"
#include "platform/screen_capture.h"
#include "platform/toast_presenter.h"
#include "storage/app_config.h"
#include "storage/history_store.h"
#include "windows/copying.h"
#include "windows/result_presenter.h"
#include "windows/translation_card_presenter.h"

namespace ovrin {

namespace {

using namespace std::chrono_literals;

// The selection's windows are gone when the capture starts, but the compositor needs a moment to show what was below.
constexpr auto settlingTime = 140ms;

constexpr const char* successSymbol = "checkmark";
constexpr const char* failureSymbol = "exclamationmark.triangle";

std::string_view recordType(CaptureIntent intent) {
    switch (intent) {
        case CaptureIntent::ocr:
        case CaptureIntent::silentOCR:
            return historyRecordType::captureOCR;
        case CaptureIntent::translate:
            return historyRecordType::captureTranslation;
        case CaptureIntent::whatIsThis:
            return historyRecordType::captureAI;
    }
    return {};
}

}  // namespace

AppState::AppState(std::unique_ptr<OCREngine> ocrEngine, TranslationService translationService,
                   std::unique_ptr<RegionSelector> captureController, std::unique_ptr<SelectionAccess> selectionService,
                   Surroundings surroundings)
    : ocrEngine_(std::move(ocrEngine)),
      translationService_(std::move(translationService)),
      captureController_(std::move(captureController)),
      selectionService_(std::move(selectionService)),
      surroundings_(surroundings),
      screenCapture_(surroundings.screen),
      self_(std::make_shared<AppState*>(this)),
      regionChoice_(surroundings.loop),
      flows_(surroundings.loop) {}

AppState::~AppState() = default;

void AppState::startCapture(CaptureIntent intent) {
    if (isCapturing_.value() || regionChoice_.isRunning()) return;
    regionChoice_.replace(chooseRegion(intent));
}

Task<bool> AppState::mayCapture() {
    if (surroundings_.screen.preflightAccess()) co_return true;
    try {
        const bool isGranted = co_await surroundings_.screen.requestAccess();
        if (!isGranted) showProblem("需要授予“屏幕与系统录音”权限后才能截图识别。");
        co_return isGranted;
    } catch (...) {
        reportFailure(std::current_exception());
        co_return false;
    }
}

Task<void> AppState::chooseRegion(CaptureIntent intent) {
    const bool isPermitted = co_await mayCapture();
    if (!isPermitted) co_return;
    isCapturing_.set(true);
    activityText_.set("拖拽选择屏幕区域");
    captureController_->begin([weak = std::weak_ptr(self_), intent](RegionSelector::Result result) {
        if (const auto self = weak.lock()) (*self)->selectionEnded(std::move(result), intent);
    });
    // The user is dragging now: time enough to load the models.
    ocrEngine_->prepare();
}

void AppState::selectionEnded(RegionSelector::Result result, CaptureIntent intent) {
    if (const DisplayRect* rect = std::get_if<DisplayRect>(&result)) return flows_.start(finishCapture(*rect, intent));
    isCapturing_.set(false);
    reportFailure(std::get<std::exception_ptr>(result));
}

Task<void> AppState::finishCapture(DisplayRect rect, CaptureIntent intent) {
    const auto settled = surroundings_.loop.now() + settlingTime;
    Image image;
    try {
        const ScreenshotRequest request = co_await screenCapture_.prepare(rect);
        co_await sleepFor(settled - surroundings_.loop.now());
        image = co_await screenCapture_.capture(request);
    } catch (...) {
        isCapturing_.set(false);
        reportFailure(std::current_exception());
        co_return;
    }
    co_await recognize(std::move(image), intent);
}

Task<void> AppState::recognize(Image image, CaptureIntent intent) {
    isCapturing_.set(true);
    activityText_.set("正在识别文字");
    OCRResult result;
    try {
        result = co_await ocrEngine_->recognize(image);
    } catch (...) {
        isCapturing_.set(false);
        reportFailure(std::current_exception());
        co_return;
    }
    latestOCRResult_.set(result);
    isCapturing_.set(false);
    activityText_.set(std::nullopt);

    const std::string text = result.fullText();
    surroundings_.history.save({.sourceText = text, .resultText = std::nullopt, .recordType = recordType(intent)});
    copyAndTell(text, "识别结果已复制", surroundings_.clipboard, surroundings_.toasts);
    present(std::move(result), std::move(image), intent);
}

void AppState::present(OCRResult result, Image image, CaptureIntent intent) {
    switch (intent) {
        case CaptureIntent::ocr:
            return surroundings_.resultPanel.show(std::move(result), std::move(image), {});
        case CaptureIntent::translate:
            return surroundings_.resultPanel.show(std::move(result), std::move(image), {.translateImmediately = true});
        case CaptureIntent::whatIsThis:
            return surroundings_.resultPanel.show(std::move(result), std::move(image),
                                                  {.initialAIAction = AIAction::whatIsThis});
        case CaptureIntent::silentOCR:
            if (surroundings_.clipboard.problem()) return;  // which the user has been told of
            return sendNotification("截图 OCR 完成",
                                    "已识别 " + std::to_string(result.paragraphs.size()) + " 段文字并复制到剪贴板。");
    }
}

void AppState::clipboardOCR() {
    flows_.start(recognizeClipboardImage());
}

Task<void> AppState::recognizeClipboardImage() {
    std::optional<Image> image;
    try {
        image = co_await surroundings_.clipboard.readImage();
    } catch (...) {
        reportFailure(std::current_exception());
        co_return;
    }
    if (!image) {
        showProblem("剪贴板中没有可识别的图片。");
        co_return;
    }
    co_await recognize(std::move(*image), CaptureIntent::ocr);
}

void AppState::clipboardTranslate() {
    flows_.start(translateClipboard());
}

Task<void> AppState::translateClipboard() {
    std::optional<Image> image;
    std::optional<std::string> string;
    try {
        image = co_await surroundings_.clipboard.readImage();
        if (!image) string = co_await surroundings_.clipboard.readString();
    } catch (...) {
        reportFailure(std::current_exception());
        co_return;
    }
    if (image) {
        co_await recognize(std::move(*image), CaptureIntent::translate);
        co_return;
    }
    std::string text(text::trimmed(string.value_or("")));
    if (text.empty()) {
        showProblem("剪贴板中没有可翻译的文本或图片。");
        co_return;
    }
    translateInPanel(std::move(text), historyRecordType::clipboardTranslation);
}

void AppState::selectionTranslate(SelectionTranslateOptions options) {
    flows_.start(translateSelection(options));
}

Task<void> AppState::translateSelection(SelectionTranslateOptions options) {
    activityText_.set("正在读取选中文字");
    SelectedText selected;
    try {
        const AsyncLock::Turn turn = co_await selectionTurns_.turn();
        const SelectionUse use = options.replace ? SelectionUse::replacing : SelectionUse::reading;
        selected = co_await selectionService_->selectedText(use);
    } catch (...) {
        reportFailure(std::current_exception());
        co_return;
    }
    activityText_.set(std::nullopt);

    if (options.replace) {
        co_await replaceSelection(std::move(selected));
    } else if (options.silent) {
        surroundings_.translationCard.show(std::move(selected.text));
    } else {
        translateInPanel(std::move(selected.text), historyRecordType::selectionTranslation);
    }
}

Task<void> AppState::replaceSelection(SelectedText selected) {
    activityText_.set("正在翻译并替换");
    std::string translatedText;
    Replacement replacement{};
    try {
        std::string targetLanguage = surroundings_.config.targetLanguage();
        TranslationResult result = co_await translationService_.translate(selected.text, std::move(targetLanguage));
        translatedText = std::move(result.translatedText);
        const AsyncLock::Turn turn = co_await selectionTurns_.turn();
        replacement = co_await selectionService_->replaceSelection(translatedText, selected.window);
    } catch (...) {
        reportFailure(std::current_exception());
        co_return;
    }
    surroundings_.history.save(
        {.sourceText = selected.text, .resultText = translatedText, .recordType = historyRecordType::selectionReplace});
    activityText_.set(std::nullopt);
    tellOf(replacement);
}

void AppState::tellOf(Replacement replacement) {
    switch (replacement) {
        case Replacement::pasted:
            return surroundings_.toasts.show("已替换为译文", successSymbol);
        case Replacement::offered:
            return surroundings_.toasts.show("译文已复制，按 Ctrl+V 粘贴", successSymbol);
        case Replacement::refused:
            return showProblem("此处无法替换选中的文字，译文已复制");
    }
}

void AppState::translateInPanel(std::string text, std::string_view recordType) {
    surroundings_.history.save({.sourceText = text, .resultText = std::nullopt, .recordType = recordType});
    surroundings_.resultPanel.show({.text = std::move(text), .translation = ""});
    if (TranslatablePanel* panel = surroundings_.resultPanel.latestViewModel()) panel->translate();
}

void AppState::sendNotification(std::string title, std::string body) {
    surroundings_.notifications.add(
        {.identifier = Uuid::random().text(), .title = std::move(title), .body = std::move(body)});
}

void AppState::reportFailure(const std::exception_ptr& failure) {
    activityText_.set(std::nullopt);
    try {
        std::rethrow_exception(failure);
    } catch (const CancellationError&) {
        // The user gave up.
    } catch (...) {
        showProblem(errorDescription(failure));
    }
}

void AppState::showProblem(const std::string& description) {
    lastError_.set(description);
    surroundings_.toasts.show(description, failureSymbol);
}

}  // namespace ovrin
