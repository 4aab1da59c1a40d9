#include "views/command_palette/command_row.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <cmath>
#include <utility>

#include "theme/ov_icon.h"
#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int iconTile = 30;
constexpr double iconSize = 15;
constexpr int inset = 9;  // between the edge of the row and what it holds
// From the top: the same for Chinese and for Latin letters, whose fonts are not of one height.
constexpr int titleBaseline = 20;
constexpr int subtitleBaseline = 38;

class AccessibleCommandRow final : public QAccessibleWidget {
public:
    explicit AccessibleCommandRow(CommandRow* row) : QAccessibleWidget(row, QAccessible::ListItem), row_(row) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = row_->isSelected();
        return state;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (name == pressAction()) emit row_->pressed();
    }
    QStringList keyBindingsForAction(const QString& name) const override {
        if (name != pressAction() || !row_->item().shortcutDisplay) return {};
        return {toQString(*row_->item().shortcutDisplay)};
    }

private:
    CommandRow* row_;
};

QAccessibleInterface* makeAccessibleRow(const QString& className, QObject* object) {
    if (className != QLatin1String("ovrin::CommandRow")) return nullptr;
    return new AccessibleCommandRow(static_cast<CommandRow*>(object));
}

}  // namespace

CommandRow::CommandRow(ViewEnvironment& environment, CommandItem item, QWidget* parent)
    : OVWidget(environment, parent), item_(std::move(item)) {
    QAccessible::installFactory(&makeAccessibleRow);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(toQString(item_.title));
    setAccessibleDescription(toQString(item_.subtitle.value_or("")));
}

QString CommandRow::words() const {
    QStringList words{toQString(item_.title), toQString(item_.subtitle.value_or(""))};
    if (item_.shortcutDisplay) words.push_back(toQString(*item_.shortcutDisplay));
    return words.join(QStringLiteral("，"));
}

void CommandRow::setSelected(bool isSelected) {
    if (std::exchange(isSelected_, isSelected) == isSelected) return;
    update();
    QAccessibleEvent change(this, isSelected ? QAccessible::SelectionAdd : QAccessible::SelectionRemove);
    QAccessible::updateAccessibility(&change);
}

void CommandRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QRect tile(inset, rect().center().y() + 1 - iconTile / 2, iconTile, iconTile);
    fillRounded(painter, tile, 8, color(ColorToken::inset));
    drawIcon(painter, OVIcon(item_.symbolName), tile, iconSize,
             color(isSelected_ ? ColorToken::accentInk : ColorToken::ink2));

    const int right = drawShortcut(painter);
    const int left = tile.right() + 11;
    const auto drawLine = [&](const QString& text, const theme::FontStyle& style, ColorToken token, int baseline) {
        const QFont font = toQFont(style);
        painter.setFont(font);
        painter.setPen(color(token));
        painter.drawText(left, baseline, QFontMetrics(font).elidedText(text, Qt::ElideRight, right - left - 10));
    };
    drawLine(toQString(item_.title), theme::font::bodyMedium, ColorToken::ink, titleBaseline);
    drawLine(toQString(item_.subtitle.value_or("")), theme::font::caption, ColorToken::ink2, subtitleBaseline);
}

// The x coordinate that is left for the words.
int CommandRow::drawShortcut(QPainter& painter) const {
    const int edge = rect().right() - inset;
    if (!item_.shortcutDisplay) return edge;
    const QString text = toQString(*item_.shortcutDisplay);
    const QFont font = toQFont({12, theme::FontWeight::medium, theme::FontDesign::standard});
    const int width = static_cast<int>(std::ceil(QFontMetricsF(font).horizontalAdvance(text))) + 14;
    const QRect cap(edge - width, rect().center().y() + 1 - 11, width, 22);
    fillRounded(painter, cap, 6, color(ColorToken::inset));
    painter.setFont(font);
    painter.setPen(color(ColorToken::ink2));
    painter.drawText(cap, Qt::AlignCenter, text);
    return cap.left();
}

}  // namespace ovrin
