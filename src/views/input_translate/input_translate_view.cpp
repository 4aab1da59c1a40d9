#include "views/input_translate/input_translate_view.h"

#include <QHBoxLayout>
#include <QShortcut>
#include <QVBoxLayout>

#include "base/watch.h"
#include "views/components/ov_button.h"
#include "views/input_translate/input_pane.h"
#include "views/input_translate/input_translate_header.h"
#include "views/input_translate/output_pane.h"
#include "windows/input_translate_view_model.h"

namespace ovrin {

namespace {
constexpr int margin = 16;
constexpr int paneGap = 12;
}  // namespace

InputTranslateView::InputTranslateView(ViewEnvironment& environment, InputTranslateViewModel& viewModel,
                                       const Published<std::string>& brandImage)
    : OVWidget(environment),
      viewModel_(viewModel),
      input_(new InputPane(environment, viewModel)),
      clear_(new OVButton(environment, QStringLiteral("清空"), OVButton::Kind::ghost)),
      start_(new OVButton(environment, QStringLiteral("开始翻译"), OVButton::Kind::primary)) {
    auto* header = new InputTranslateHeader(environment, viewModel, brandImage);
    connect(header, &InputTranslateHeader::closeRequested, this, &InputTranslateView::closeRequested);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(header);
    column->addWidget(makePanes(), 1);
    column->addWidget(makeBottomBar());
    addShortcut();
    bind();
}

QWidget* InputTranslateView::makePanes() {
    auto* panes = new QWidget;
    auto* row = new QHBoxLayout(panes);
    row->setContentsMargins(margin, 2, margin, 0);
    row->setSpacing(paneGap);
    row->addWidget(input_, 1);
    row->addWidget(new OutputPane(environment(), viewModel_), 1);
    return panes;
}

QWidget* InputTranslateView::makeBottomBar() {
    clear_->setOVIcon(OVIcon::trash);
    start_->setOVIcon(OVIcon::languages);
    start_->setToolTip(QStringLiteral("Ctrl+Enter"));
    start_->setFixedWidth(start_->sizeHint().width());  // whatever it says
    auto* bar = new QWidget;
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(margin, 12, margin, margin);
    row->addWidget(clear_);
    row->addStretch();
    row->addWidget(start_);
    return bar;
}

// With the key that starts things on this desktop, and with the one that is Command in the program's own shortcuts.
// Unlike the button it works while a translation runs, which the new one replaces.
void InputTranslateView::addShortcut() {
    auto* shortcut = new QShortcut(this);
    shortcut->setKeys(
        {Qt::CTRL | Qt::Key_Return, Qt::CTRL | Qt::Key_Enter, Qt::META | Qt::Key_Return, Qt::META | Qt::Key_Enter});
    shortcut->setAutoRepeat(false);
    connect(shortcut, &QShortcut::activated, this, [this] { viewModel_.translate(); });
}

void InputTranslateView::bind() {
    connect(start_, &QAbstractButton::clicked, this, [this] { viewModel_.translate(); });
    connect(clear_, &QAbstractButton::clicked, this, [this] {
        viewModel_.clear();
        focusInput();
    });
    changes_ = watch(
        std::tie(viewModel_.inputText(), viewModel_.outputText(), viewModel_.isStreaming(), viewModel_.errorMessage()),
        [this] { refresh(); });
}

void InputTranslateView::refresh() {
    const bool isEmpty = viewModel_.inputText()->empty() && viewModel_.outputText()->empty() &&
                         !viewModel_.isStreaming().value() && !viewModel_.errorMessage().value();
    clear_->setEnabled(!isEmpty);
    start_->setText(viewModel_.isStreaming().value() ? QStringLiteral("翻译中") : QStringLiteral("开始翻译"));
    start_->setEnabled(viewModel_.canTranslate());
}

void InputTranslateView::focusInput() {
    input_->focusEditor();
}

}  // namespace ovrin
