#include "views/components/ov_choice_bar.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QRadioButton>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int reducedDuration = 140;   // milliseconds
constexpr double middleOfText = 0.37;  // above the baseline, of capitals and ideographs alike, in font sizes
constexpr int pictureWidth = 104;      // of a button with a picture, in points

// The measures of a look, in points.
struct Measures {
    int height;  // of a button
    double radius;
    double padding;  // at both ends of a button
    int gap;         // between buttons
    int margin;      // around all of them
    double iconSize;
    double iconGap;
    theme::FontStyle font;
};

const Measures& measuresOf(OVChoiceBar::Look look) {
    static const Measures segments{24, 6,  14, 0,
                                   2,  13, 6,  {12, theme::FontWeight::medium, theme::FontDesign::standard}};
    static const Measures filters{28, 8, 11, 2, 0, 14, 6, {12, theme::FontWeight::medium, theme::FontDesign::standard}};
    static const Measures sidebar{36, 9, 11, 3, 0, 16, 10, theme::font::bodyMedium};
    static const Measures pictures{96, 10, 0, 8,
                                   0,  52, 8, {12, theme::FontWeight::medium, theme::FontDesign::standard}};
    switch (look) {
        case OVChoiceBar::Look::segments:
            return segments;
        case OVChoiceBar::Look::pictures:
            return pictures;
        case OVChoiceBar::Look::filters:
            return filters;
        case OVChoiceBar::Look::sidebar:
            break;
    }
    return sidebar;
}

bool isKeyboardReason(Qt::FocusReason reason) {
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
}

}  // namespace

class OVChoiceBar::Item final : public QRadioButton {
public:
    Item(ViewEnvironment& environment, const Choice& choice, Look look)
        : environment_(environment), icon_(choice.icon), look_(look), measures_(measuresOf(look)) {
        if (!choice.picture.isEmpty()) picture_.load(choice.picture);
        setText(choice.title);
        setFont(toQFont(measures_.font));
        setAttribute(Qt::WA_Hover);
        const bool isColumn = look == Look::sidebar;
        setSizePolicy(isColumn ? QSizePolicy::Expanding : QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    void setCurrent(bool isCurrent) {
        setChecked(isCurrent);
        // The others are reached from the chosen one by the arrow keys.
        setFocusPolicy(isCurrent ? Qt::TabFocus : Qt::NoFocus);
    }

    bool showsRing() const { return showsRing_; }
    void showRing() {
        showsRing_ = true;
        update();
    }

    QSize sizeHint() const override {
        if (look_ == Look::pictures) return {pictureWidth, measures_.height};
        const double text = QFontMetricsF(font()).horizontalAdvance(this->text());
        return {static_cast<int>(std::ceil(2 * measures_.padding + iconWidth() + text)), measures_.height};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& place) const override { return rect().contains(place); }

    // A click on the chosen one leaves it chosen.
    void nextCheckState() override {}

    void focusInEvent(QFocusEvent* event) override {
        showsRing_ = isKeyboardReason(event->reason());
        QRadioButton::focusInEvent(event);
        update();
    }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (!isEnabled()) painter.setOpacity(0.45);
        const bool isHovered = underMouse() && isEnabled() && !isChecked();
        if (isHovered && look_ != Look::segments) {
            QColor ground = environment_.color(ColorToken::hover);
            ground.setAlphaF(0.6F);
            fillRounded(painter, rect(), measures_.radius, ground);
        }
        if (look_ == Look::pictures) {
            drawPicture(painter);
        } else {
            drawLine(painter, isHovered);
        }
        if (hasFocus() && showsRing_) drawRing(painter);
    }

private:
    void drawPicture(QPainter& painter) {
        const double textHeight = QFontMetricsF(font()).height();
        const double top = (height() - measures_.iconSize - measures_.iconGap - textHeight) / 2;
        picture_.render(&painter,
                        QRectF((width() - measures_.iconSize) / 2, top, measures_.iconSize, measures_.iconSize));
        painter.setPen(environment_.color(isChecked() ? ColorToken::ink : ColorToken::ink2));
        painter.setFont(font());
        painter.drawText(QRectF(0, top + measures_.iconSize + measures_.iconGap, width(), textHeight), Qt::AlignCenter,
                         text());
    }

    void drawLine(QPainter& painter, bool isHovered) {
        const double text = QFontMetricsF(font()).horizontalAdvance(this->text());
        double x = look_ == Look::sidebar ? measures_.padding : (width() - iconWidth() - text) / 2;
        if (icon_) {
            drawIcon(painter, *icon_, QRectF(x, 0, measures_.iconSize, height()), measures_.iconSize,
                     environment_.color(isChecked() ? ColorToken::accentInk : ColorToken::ink2));
            x += iconWidth();
        }
        painter.setPen(environment_.color(isChecked() || isHovered ? ColorToken::ink : ColorToken::ink2));
        painter.setFont(font());
        // On one line whichever script they are in: the toolkit would centre Chinese text differently.
        painter.drawText(QPointF(x, height() / 2.0 + middleOfText * measures_.font.size), this->text());
    }

    // On a highlight that has an outline of its own, within that.
    void drawRing(QPainter& painter) {
        const double inset = look_ == Look::pictures ? 3.75 : 0.75;
        painter.setPen(QPen(environment_.color(ColorToken::accent), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), measures_.radius - inset + 0.75,
                                measures_.radius - inset + 0.75);
    }

    double iconWidth() const {
        if (!icon_) return 0;
        return measures_.iconSize + (text().isEmpty() ? 0 : measures_.iconGap);
    }

    ViewEnvironment& environment_;
    std::optional<OVIcon> icon_;
    Look look_;
    const Measures& measures_;
    QSvgRenderer picture_;
    bool showsRing_ = false;
};

OVChoiceBar::OVChoiceBar(ViewEnvironment& environment, const QString& label, const std::vector<Choice>& choices,
                         Look look, QWidget* parent)
    : OVWidget(environment, parent),
      look_(look),
      position_(environment, theme::motion::tab, [this](double) { update(); }) {
    const Measures& measures = measuresOf(look);
    position_.setReducedDuration(reducedDuration);
    setAccessibleName(label);
    auto* layout = new QBoxLayout(look == Look::sidebar ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight, this);
    layout->setContentsMargins(measures.margin, measures.margin, measures.margin, measures.margin);
    layout->setSpacing(measures.gap);
    int widest = 0;
    for (const Choice& choice : choices) {
        auto* item = new Item(environment, choice, look);
        item->setAccessibleName(label.isEmpty() ? choice.title : label + QStringLiteral("：") + choice.title);
        item->installEventFilter(this);
        const int index = static_cast<int>(items_.size());
        connect(item, &QAbstractButton::clicked, this, [this, index] { choose(index); });
        connect(&environment, &ViewEnvironment::changed, item, qOverload<>(&QWidget::update));
        widest = std::max(widest, item->sizeHint().width());
        layout->addWidget(item);
        items_.push_back(item);
    }
    if (look == Look::segments) {
        for (Item* const item : items_) item->setFixedWidth(widest);
    }
    if (look != Look::sidebar) setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    items_.front()->setCurrent(true);
    for (std::size_t index = 1; index < items_.size(); ++index) items_[index]->setCurrent(false);
}

void OVChoiceBar::setCurrent(int index) {
    if (index == current_) return;
    Item* const before = items_.at(static_cast<std::size_t>(std::exchange(current_, index)));
    Item* const now = items_.at(static_cast<std::size_t>(index));
    const bool hadFocus = before->hasFocus();
    now->setCurrent(true);
    if (hadFocus) now->setFocus(before->showsRing() ? Qt::TabFocusReason : Qt::OtherFocusReason);
    before->setCurrent(false);
    if (isVisible()) {
        position_.animateTo(index);
    } else {
        position_.jumpTo(index);
    }
}

void OVChoiceBar::focusCurrent() {
    items_.at(static_cast<std::size_t>(current_))->setFocus(Qt::OtherFocusReason);
}

void OVChoiceBar::choose(int index) {
    if (index == current_) return;
    setCurrent(index);
    emit chosen(index);
}

bool OVChoiceBar::handleKey(int key) {
    const int last = static_cast<int>(items_.size()) - 1;
    switch (key) {
        case Qt::Key_Left:
        case Qt::Key_Up:
            choose(std::max(current_ - 1, 0));
            return true;
        case Qt::Key_Right:
        case Qt::Key_Down:
            choose(std::min(current_ + 1, last));
            return true;
        case Qt::Key_Home:
            choose(0);
            return true;
        case Qt::Key_End:
            choose(last);
            return true;
        default:
            return false;
    }
}

bool OVChoiceBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* const press = static_cast<QKeyEvent*>(event);
        const Qt::KeyboardModifiers held = press->modifiers() & ~Qt::KeypadModifier;
        if (held == Qt::NoModifier && handleKey(press->key())) {
            items_.at(static_cast<std::size_t>(current_))->showRing();  // from now on the keyboard is in use
            return true;
        }
    }
    return OVWidget::eventFilter(watched, event);
}

// Beyond either end, where the spring overshoots, it goes on as between the last two.
QRectF OVChoiceBar::highlight() const {
    const double position = position_.value();
    const auto last = static_cast<int>(items_.size()) - 1;
    const int from = std::clamp(static_cast<int>(std::floor(position)), 0, std::max(last - 1, 0));
    const QRectF a = items_[static_cast<std::size_t>(from)]->geometry();
    const QRectF b = items_[static_cast<std::size_t>(std::min(from + 1, last))]->geometry();
    const double share = position - from;
    return {std::lerp(a.x(), b.x(), share), std::lerp(a.y(), b.y(), share), std::lerp(a.width(), b.width(), share),
            std::lerp(a.height(), b.height(), share)};
}

void OVChoiceBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Measures& measures = measuresOf(look_);
    if (look_ != Look::segments) {
        fillRounded(painter, highlight(), measures.radius, color(ColorToken::accentTint));
        if (look_ != Look::pictures) return;
        painter.setPen(QPen(color(ColorToken::accent), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(highlight().adjusted(0.75, 0.75, -0.75, -0.75), measures.radius, measures.radius);
        return;
    }
    fillRounded(painter, rect(), measures.radius + measures.margin, color(ColorToken::inset));
    // A raised thumb: white on the light track, a step brighter on the dark one.
    QColor thumb = color(environment().isDark() ? ColorToken::ink3 : ColorToken::canvas);
    thumb.setAlphaF(environment().isDark() ? 0.42F : 1.0F);
    QColor line = color(ColorToken::ink);
    line.setAlphaF(environment().isDark() ? 0.10F : 0.12F);
    painter.setClipRect(rect());
    fillRounded(painter, highlight(), measures.radius, thumb);
    painter.setPen(QPen(line, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(highlight().adjusted(0.5, 0.5, -0.5, -0.5), measures.radius - 0.5, measures.radius - 0.5);
}

}  // namespace ovrin
