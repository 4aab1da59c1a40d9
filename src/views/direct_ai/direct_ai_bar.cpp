#include "views/direct_ai/direct_ai_bar.h"

#include <QGridLayout>

#include "base/watch.h"
#include "views/components/ov_brand_mark.h"
#include "views/components/ov_text_editor.h"
#include "views/components/send_button.h"
#include "views/direct_ai/draft_field.h"
#include "windows/direct_ai_view_model.h"

namespace ovrin {

namespace {
constexpr int padding = 20;
constexpr double markSize = 32;
constexpr double lineHeight = 24;
const theme::FontStyle questionFont{16, theme::FontWeight::regular, theme::FontDesign::standard};
}  // namespace

DirectAIBar::DirectAIBar(ViewEnvironment& environment, DirectAIViewModel& viewModel,
                         const Published<std::string>& brandImage)
    : OVWidget(environment), field_(new OVTextEditor(environment, QStringLiteral("阁下今天有什么困惑？"))) {
    field_->setTextStyle(questionFont, lineHeight);
    field_->setReturnKey(OVTextEditor::ReturnKey::submits);
    auto* send = new SendButton(environment, QStringLiteral("发送"));

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(padding, padding, padding - 4, padding - 4);
    grid->setHorizontalSpacing(10);
    grid->addWidget(new OVBrandMark(environment, markSize, brandImage), 0, 0, Qt::AlignTop);
    grid->addWidget(field_, 0, 1);
    grid->addWidget(send, 0, 2, Qt::AlignBottom);
    grid->setColumnStretch(1, 1);

    const auto sending = [&viewModel] { viewModel.send(); };
    connect(field_, &OVTextEditor::submitted, this, sending);
    connect(send, &QAbstractButton::clicked, this, sending);
    subscriptions_.push_back(bindDraft(viewModel, *field_));
    subscriptions_.push_back(watch(viewModel.draft(), [send, &viewModel](const std::string& /*draft*/) {
        send->setEnabled(viewModel.canSend());
    }));
}

}  // namespace ovrin
