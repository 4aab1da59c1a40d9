#include "views/result_panel/result_panel_view.h"

#include <QApplication>
#include <QScrollBar>

#include "views/components/ov_scroll_area.h"
#include "views/components/ov_streaming_text.h"
#include "windows/panel_fixture.h"

namespace ovrin {
namespace {

class ResultPanelViewTest : public PanelTest {
protected:
    ResultPanelViewTest() {
        view.resize(460, 460);
        view.show();
        QApplication::processEvents();
    }

    ViewEnvironment environment;
    Published<std::string> brandImage{"EntranceIconLight"};
    ResultPanelViewModel viewModel{{.originalText = std::string(3000, 'x'),
                                    .translation = {},
                                    .ocrResult = std::nullopt,
                                    .sourceImage = std::nullopt,
                                    .targetLanguageSetting = "zh-Hans"},
                                   services()};
    ResultPanelView view{environment, viewModel, brandImage};
    QScrollBar* bar = view.findChild<OVScrollArea*>()->verticalScrollBar();
};

TEST_F(ResultPanelViewTest, ATranslationBelowAConversationIsSeenAsItComes) {
    willAnswer("答");
    viewModel.submit("问", AIAction::summarize);
    loop.runPosted();
    QApplication::processEvents();
    ASSERT_GT(bar->value(), 0);
    ASSERT_EQ(bar->value(), bar->maximum());

    willStream("译文");
    viewModel.translate();
    loop.runPosted();
    push(std::string(5000, 'y'));
    for (auto* const text : view.findChildren<OVStreamingText*>()) text->showPending();
    QApplication::processEvents();
    EXPECT_EQ(bar->value(), 0);
    EXPECT_GT(bar->maximum(), 0);
}

}  // namespace
}  // namespace ovrin
