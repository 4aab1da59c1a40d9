#include "views/settings/settings_row.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr int rowPadding = 11;  // above and below
constexpr int smallestHeight = 34;
constexpr int fieldHeight = 34;
constexpr int titleColumn = 128;
constexpr int columnGap = 16;
constexpr int lineGap = 3;
constexpr int fieldPadding = 4;  // above and below; the reserved line is part of the distance

// The control itself, which may lie within what is placed in the row.
QWidget& focusOf(QWidget& control) {
    return control.focusProxy() != nullptr ? *control.focusProxy() : control;
}

}  // namespace

SettingsRow::SettingsRow(ViewEnvironment& environment, const QString& title, const QString& detail, QWidget* control,
                         Layout layout, QWidget* parent)
    : OVWidget(environment, parent),
      line_(new SettingsLine(environment, detail,
                             layout == Layout::field ? SettingsLine::Place::reserved : SettingsLine::Place::asNeeded)) {
    QWidget& named = focusOf(*control);
    if (named.accessibleName().isEmpty()) named.setAccessibleName(title);
    const auto describe = [this, &named] { named.setAccessibleDescription(line_->words()); };
    connect(line_, &SettingsLine::changed, &named, describe);
    describe();

    auto* label = new OVLabel(environment, title, theme::font::body, ColorToken::ink);
    auto* row = new QHBoxLayout(this);
    row->setSpacing(columnGap);
    auto* column = new QVBoxLayout;
    column->setSpacing(lineGap);
    if (layout == Layout::field) {
        row->setContentsMargins(0, fieldPadding, 0, fieldPadding);
        label->setFixedSize(titleColumn, fieldHeight);
        row->addWidget(label, 0, Qt::AlignTop);
        auto* controlRow = new QHBoxLayout;
        controlRow->setContentsMargins(0, 0, 0, 0);
        const bool isStretching = control->sizePolicy().horizontalPolicy() != QSizePolicy::Fixed &&
                                  control->minimumWidth() != control->maximumWidth();
        controlRow->addWidget(control, isStretching ? 1 : 0);
        if (!isStretching) controlRow->addStretch();
        controlRow->addStrut(fieldHeight);
        column->addLayout(controlRow);
        column->addWidget(line_);
        row->addLayout(column, 1);
    } else {
        row->setContentsMargins(0, rowPadding, 0, rowPadding);
        column->addStretch();
        column->addWidget(label);
        column->addWidget(line_);
        column->addStretch();
        row->addLayout(column, 1);
        row->addWidget(control, 0, Qt::AlignVCenter);
        setMinimumHeight(smallestHeight + 2 * rowPadding);
    }
}

}  // namespace ovrin
