// What the user would see: every toast, notification, panel and card as a line in the journal.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "fakes/journal.h"
#include "platform/notification_center.h"
#include "platform/toast_presenter.h"
#include "windows/result_presenter.h"
#include "windows/translation_card_presenter.h"

namespace ovrin {

class FakeToastPresenter final : public ToastPresenter {
public:
    explicit FakeToastPresenter(Journal& journal) : journal_(journal) {}
    void show(std::string message, std::string symbol) override { journal_.add("toast " + symbol + ": " + message); }

private:
    Journal& journal_;
};

class FakeNotificationCenter final : public NotificationCenter {
public:
    explicit FakeNotificationCenter(Journal& journal) : journal_(journal) {}

    std::string lastIdentifier;
    std::function<void()> lastActivated;

    void requestAuthorization(NotificationAuthorization /*wanted*/) override { journal_.add("authorization"); }
    void add(Notification notification) override {
        lastIdentifier = notification.identifier;
        lastActivated = notification.activated;
        journal_.add("notification: " + notification.title + " | " + notification.body);
    }

private:
    Journal& journal_;
};

class FakeResultPresenter final : public ResultPresenter, private TranslatablePanel {
public:
    explicit FakeResultPresenter(Journal& journal) : journal_(journal) {}

    bool hasViewModel = true;
    std::optional<Image> lastImage;

    void show(OCRResult ocrResult, std::optional<Image> image, ResultPanelStart start) override {
        lastImage = image;
        std::string event = "panel: " + ocrResult.fullText();
        if (start.translateImmediately) event += " [translating]";
        if (start.initialAIAction == AIAction::whatIsThis) event += " [whatIsThis]";
        journal_.add(event);
    }
    void show(ResultPanelText text) override { journal_.add("panel: " + text.text + " => " + text.translation); }
    TranslatablePanel* latestViewModel() override { return hasViewModel ? this : nullptr; }

private:
    void translate() override { journal_.add("panel translates"); }

    Journal& journal_;
};

class FakeTranslationCardPresenter final : public TranslationCardPresenter {
public:
    explicit FakeTranslationCardPresenter(Journal& journal) : journal_(journal) {}
    void show(std::string sourceText) override { journal_.add("card: " + sourceText); }

private:
    Journal& journal_;
};

}  // namespace ovrin
