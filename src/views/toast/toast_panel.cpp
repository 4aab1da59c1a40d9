#include "views/toast/toast_panel.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QScreen>
#include <QTextLayout>

#include "views/components/drawing.h"
#include "views/components/ov_animated_icon.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr int panelWidth = 260;
constexpr int panelHeight = 40;
constexpr int distanceFromTop = 28;
constexpr int padding = 16;
constexpr int spacing = 9;
constexpr double cornerRadius = 12;
constexpr double iconSize = 15;
constexpr qsizetype longestMessage = 200;  // in UTF-16 units: more than two lines hold

// What is too long for a line in the ordinary size stands in two small ones; what is too long for those too is cut.
void showSmall(QLabel& label, const QString& line, int room) {
    label.setFont(toQFont(theme::font::caption));
    QTextLayout layout(line, label.font());
    QTextOption wrapping;
    wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(wrapping);
    layout.beginLayout();
    QTextLine first = layout.createLine();
    first.setLineWidth(room);
    layout.endLayout();
    const QString rest = label.fontMetrics().elidedText(line.mid(first.textLength()), Qt::ElideRight, room);
    label.setText(line.left(first.textLength()).trimmed() + (rest.isEmpty() ? rest : '\n' + rest));
}
}  // namespace

ToastPanel::ToastPanel(ViewEnvironment& environment, const std::string& message, OVIcon icon)
    : OVFloatingWindow(environment, cornerRadius, WindowRole::toast) {
    setFrameSize({panelWidth, panelHeight});
    setAttribute(Qt::WA_TransparentForMouseEvents);

    auto* symbol = new OVAnimatedIcon(environment, icon, iconSize, ColorToken::accentInk);
    auto* label = new QLabel;
    label->setFont(toQFont(theme::font::bodyMedium));
    label->setTextFormat(Qt::PlainText);
    QPalette colors;
    colors.setColor(QPalette::WindowText, color(ColorToken::ink));
    label->setPalette(colors);
    const QString line = beginning(toQString(message).simplified(), longestMessage);
    const int room = panelWidth - 2 * padding - spacing - symbol->width();
    label->setText(line);
    if (label->fontMetrics().horizontalAdvance(line) > room) showSmall(*label, line, room);
    label->setAccessibleName(line);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(padding, 0, padding, 0);
    row->setSpacing(spacing);
    row->addStretch();
    row->addWidget(symbol, 0, Qt::AlignVCenter);
    row->addWidget(label, 0, Qt::AlignVCenter);
    row->addStretch();

    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect visible = screen->availableGeometry();
        moveFrame({visible.center().x() + 1 - panelWidth / 2, visible.top() + distanceFromTop});
    }
    show();
}

}  // namespace ovrin
