// The one object through which every action of the user enters: capture and read a part of the screen, read or
// translate what is on the clipboard, translate what is selected in another program. It starts flows and publishes a
// small status, nothing more.
//
// Main thread. Operations return at once and never throw: what fails shows in lastError and as a toast, what the user
// cancels shows nowhere. Flows may interleave wherever they wait. Destroying the object ends them all where they wait;
// it must not be destroyed from inside one of its effects or notifications.
#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "app/capture_intent.h"
#include "base/async_lock.h"
#include "base/geometry.h"
#include "base/image.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "language/selection_access.h"
#include "language/translation_service.h"
#include "recognition/ocr_engine.h"
#include "recognition/ocr_result.h"
#include "recognition/region_selector.h"
#include "recognition/screen_capture_service.h"

namespace ovrin {

class AppConfig;
class ClipboardService;
class HistoryStore;
class NotificationCenter;
class ResultPresenter;
class ScreenCapture;
class ToastPresenter;
class TranslationCardPresenter;

struct SelectionTranslateOptions {
    bool silent = false;   // show the small card, not the panel
    bool replace = false;  // put the translation in the selection's place, whatever silent says
};

class AppState {
public:
    // What the flows act on; all of it has to outlive the AppState.
    struct Surroundings {
        EventLoop& loop;
        ScreenCapture& screen;
        ClipboardService& clipboard;
        const AppConfig& config;
        HistoryStore& history;
        ToastPresenter& toasts;
        NotificationCenter& notifications;
        ResultPresenter& resultPanel;
        TranslationCardPresenter& translationCard;
    };

    AppState(std::unique_ptr<OCREngine> ocrEngine, TranslationService translationService,
             std::unique_ptr<RegionSelector> captureController, std::unique_ptr<SelectionAccess> selectionService,
             Surroundings surroundings);
    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;
    ~AppState();

    // A capture or recognition flow is running.
    const Published<bool>& isCapturing() const { return isCapturing_; }
    // The running step in a few words; none when idle.
    const Published<std::optional<std::string>>& activityText() const { return activityText_; }
    // What the last successful recognition gave.
    const Published<std::optional<OCRResult>>& latestOCRResult() const { return latestOCRResult_; }
    // What the last failure said; a success leaves it.
    const Published<std::optional<std::string>>& lastError() const { return lastError_; }

    // Does nothing while isCapturing.
    void startCapture(CaptureIntent intent);
    void clipboardOCR();
    void clipboardTranslate();
    void selectionTranslate(SelectionTranslateOptions options);

private:
    Task<bool> mayCapture();
    Task<void> chooseRegion(CaptureIntent intent);
    void selectionEnded(RegionSelector::Result result, CaptureIntent intent);
    Task<void> finishCapture(DisplayRect rect, CaptureIntent intent);
    Task<void> recognize(Image image, CaptureIntent intent);
    void present(OCRResult result, Image image, CaptureIntent intent);
    Task<void> recognizeClipboardImage();
    Task<void> translateClipboard();
    Task<void> translateSelection(SelectionTranslateOptions options);
    Task<void> replaceSelection(SelectedText selected);
    void tellOf(Replacement replacement);
    void translateInPanel(std::string text, std::string_view recordType);
    void sendNotification(std::string title, std::string body);

    // The end of a flow that failed; of one that was cancelled, silently.
    void reportFailure(const std::exception_ptr& failure);
    void showProblem(const std::string& description);

    Published<bool> isCapturing_;
    Published<std::optional<std::string>> activityText_;
    Published<std::optional<OCRResult>> latestOCRResult_;
    Published<std::optional<std::string>> lastError_;
    std::unique_ptr<OCREngine> ocrEngine_;
    TranslationService translationService_;
    std::unique_ptr<RegionSelector> captureController_;
    std::unique_ptr<SelectionAccess> selectionService_;
    Surroundings surroundings_;
    ScreenCaptureService screenCapture_;
    AsyncLock selectionTurns_;         // one at a time borrows the clipboard from the user
    std::shared_ptr<AppState*> self_;  // what the selection's completion holds weakly
    TaskSlot regionChoice_;            // up to the selection's begin
    TaskGroup flows_;                  // ends before everything that the flows use
};

}  // namespace ovrin
