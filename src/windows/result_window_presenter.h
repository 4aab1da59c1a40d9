// Owns the one result panel: makes its window on first use, gives it new content, remembers what it showed last.
#pragma once

#include <memory>
#include <optional>

#include "storage/app_config.h"
#include "storage/defaults_store.h"
#include "windows/closable_window.h"
#include "windows/result_panel_view_model.h"
#include "windows/result_panel_window.h"
#include "windows/result_presenter.h"

namespace ovrin {

// Main thread. Everything may be called from inside an event of the window or a notification of its view model: a
// closed window and a replaced view model are taken down by the loop, afterwards.
class ResultWindowPresenter final : public ResultPresenter {
public:
    // What the services refer to, the config and the defaults outlive the presenter.
    ResultWindowPresenter(ResultPanelViewModel::Services services, const AppConfig& config,
                          const DefaultsStore& defaults, MakeResultPanelWindow makeWindow);
    ResultWindowPresenter(const ResultWindowPresenter&) = delete;
    ResultWindowPresenter& operator=(const ResultWindowPresenter&) = delete;

    void show(OCRResult ocrResult, std::optional<Image> image, ResultPanelStart start) override;
    void show(ResultPanelText text) override;
    ResultPanelViewModel* latestViewModel() override { return latestViewModel_.get(); }

    // Shows again what was shown last, as it is; nothing before the first.
    void showLatest();

    // Ends what streams and closes the window; what it showed stays the latest.
    void close();

    // Puts an open window above those of other programs or among them, as the preference says by now.
    void applyLevel();

    // Whether what was shown last holds a translation.
    bool hasTranslationResult() const;

private:
    using Panel = ClosableWindow<ResultPanelWindow, ResultPanelViewModel>;

    std::shared_ptr<ResultPanelViewModel> makeViewModel(ResultPanelViewModel::Content content) const;
    void show(std::shared_ptr<ResultPanelViewModel> viewModel);

    ResultPanelViewModel::Services services_;
    const AppConfig& config_;
    const DefaultsStore& defaults_;
    MakeResultPanelWindow makeWindow_;
    std::shared_ptr<ResultPanelViewModel> latestViewModel_;
    Panel panel_;
};

}  // namespace ovrin
