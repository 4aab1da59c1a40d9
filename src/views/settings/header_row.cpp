#include "views/settings/header_row.h"

#include <QHBoxLayout>

#include "views/components/drawing.h"
#include "views/components/ov_button.h"
#include "views/components/ov_text_field.h"

namespace ovrin {

namespace {

constexpr int gap = 8;
constexpr int nameShare = 2;
constexpr int valueShare = 3;

void showText(OVTextField& field, const std::string& text) {
    if (const QString shown = toQString(text); shown != field.text()) field.setText(shown);
}

}  // namespace

HeaderRow::HeaderRow(ViewEnvironment& environment, const Uuid& id, QWidget* parent)
    : OVWidget(environment, parent),
      id_(id),
      name_(new OVTextField(environment, {})),
      value_(new OVTextField(environment, QStringLiteral("值"))),
      remove_(new OVIconButton(environment, OVIcon::trash, {})) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(gap);
    row->addWidget(name_, nameShare);
    row->addWidget(value_, valueShare);
    row->addWidget(remove_);
    connect(name_, &QLineEdit::textEdited, this, &HeaderRow::nameEdited);
    connect(value_, &QLineEdit::textEdited, this, &HeaderRow::valueEdited);
    connect(remove_, &QAbstractButton::clicked, this, &HeaderRow::removeRequested);
}

void HeaderRow::show(const HeaderEntry& header) {
    showText(*name_, header.name);
    showText(*value_, header.value);
}

void HeaderRow::setNumber(int number) {
    name_->setAccessibleName(QStringLiteral("Header %1 名称").arg(number));
    value_->setAccessibleName(QStringLiteral("Header %1 值").arg(number));
    remove_->setToolTip(QStringLiteral("删除 Header"));
    remove_->setAccessibleName(QStringLiteral("删除 Header %1").arg(number));
}

void HeaderRow::setNamePlaceholder(const QString& placeholder) {
    name_->setPlaceholderText(placeholder);
}

QWidget& HeaderRow::followInTabOrder(QWidget& before) {
    setTabOrder(&before, name_);
    setTabOrder(name_, value_);
    setTabOrder(value_, remove_);
    return *remove_;
}

void HeaderRow::focusName() {
    name_->setFocus(Qt::TabFocusReason);
}

void HeaderRow::focusRemoveButton() {
    remove_->setFocus(Qt::TabFocusReason);
}

}  // namespace ovrin
