#include "views/components/ov_picker.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

#include "views/components/drawing.h"
#include "views/components/ov_menu.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr double cornerRadius = 8;
constexpr int controlHeight = 28;
constexpr double padding = 10;
constexpr double chevronSize = 12;
constexpr double chevronGap = 6;
constexpr double longestTitle = 140;  // points
constexpr int menuGap = 4;
const theme::FontStyle pickerFont{12, theme::FontWeight::medium, theme::FontDesign::standard};

}  // namespace

OVPicker::OVPicker(ViewEnvironment& environment, const QString& label, std::vector<Option> options, QWidget* parent)
    : OVButtonBase(environment, parent), label_(label), options_(std::move(options)) {
    setFont(toQFont(pickerFont));
    setToolTip(label);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, &OVPicker::openMenu);
}

void OVPicker::setOptions(std::vector<Option> options) {
    options_ = std::move(options);
    updateGeometry();
}

void OVPicker::setCurrent(const Option& current) {
    current_ = current;
    setAccessibleName(label_ + QStringLiteral("：") + current.title);
    updateGeometry();
    update();
}

// As wide as the widest option, so that its neighbours stay where they are whatever is chosen.
QSize OVPicker::sizeHint() const {
    const QFontMetricsF metrics(font());
    double title = metrics.horizontalAdvance(current_.title);
    for (const Option& option : options_) title = std::max(title, metrics.horizontalAdvance(option.title));
    const double width = padding + std::min(title, longestTitle) + chevronGap + chevronSize + padding;
    return {static_cast<int>(std::ceil(width)), controlHeight};
}

void OVPicker::openMenu() {
    auto* menu = new OVMenu(environment(), this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setAttribute(Qt::WA_NoMouseReplay);  // the click on the control that closes the menu must not open it again
    menu->setMinimumWidth(width());
    QAction* chosen = nullptr;
    for (const Option& option : options_) {
        QAction* const item = menu->addAction(option.title, this, [this, value = option.value] { emit picked(value); });
        item->setCheckable(true);
        if (option.value != current_.value) continue;
        item->setChecked(true);
        menu->setItemIcon(*item, OVIcon::check);
        chosen = item;
    }
    menu->popup(mapToGlobal(QPoint(0, height() + menuGap)));
    if (chosen != nullptr) menu->setActiveAction(chosen);
}

void OVPicker::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return openMenu();
        default:
            return OVButtonBase::keyPressEvent(event);
    }
}

void OVPicker::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.45);
    fillRounded(painter, rect(), cornerRadius,
                environment().color(isHovered() || isDown() ? ColorToken::hover : ColorToken::inset));
    const QRectF inside = QRectF(rect()).adjusted(padding, 0, -padding, 0);
    const QRectF title = inside.adjusted(0, 0, -(chevronGap + chevronSize), 0);
    painter.setFont(font());
    painter.setPen(environment().color(ColorToken::ink));
    painter.drawText(title, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     QFontMetricsF(font()).elidedText(current_.title, Qt::ElideRight, title.width()));
    drawIcon(painter, OVIcon::chevronDown, QRectF(inside.right() - chevronSize, 0, chevronSize, height()), chevronSize,
             environment().color(ColorToken::ink3));
    drawFocusRing(painter, cornerRadius);
}

}  // namespace ovrin
