#include "views/input_translate/text_pane.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "views/components/ov_label.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr int titleHeight = 40;
const theme::FontStyle titleFont{12, theme::FontWeight::semibold, theme::FontDesign::standard};
}  // namespace

TextPane::TextPane(ViewEnvironment& environment, const QString& title, QWidget* parent)
    : OVSurface(environment, cornerRadius, Elevation::flat, parent),
      besideTitle_(new QHBoxLayout),
      actions_(new QHBoxLayout),
      column_(new QVBoxLayout(this)) {
    auto* header = new QWidget;
    header->setFixedHeight(titleHeight);
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(padding, 0, 8, 0);
    row->setSpacing(8);
    row->addWidget(new OVLabel(environment, title, titleFont, ColorToken::ink2));
    row->addLayout(besideTitle_);
    row->addStretch();
    actions_->setSpacing(2);
    row->addLayout(actions_);
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(0);
    column_->addWidget(header);
}

void TextPane::addBesideTitle(QWidget* widget) {
    besideTitle_->addWidget(widget);
}

void TextPane::addAction(QWidget* control) {
    actions_->addWidget(control);
}

void TextPane::setContent(QWidget* content, int leftMargin) {
    auto* inset = new QHBoxLayout;
    inset->setContentsMargins(leftMargin, 0, scrollBarMargin, 8);
    inset->addWidget(content);
    column_->addLayout(inset, 1);
}

}  // namespace ovrin
