#include "views/settings/saved_note.h"

#include <QPainter>

#include "base/watch.h"
#include "theme/type_scale.h"
#include "views/components/drawing.h"

namespace ovrin {

using theme::ColorToken;

namespace {
constexpr double iconSize = 13;
constexpr double iconGap = 5;
}  // namespace

SavedNote::SavedNote(ViewEnvironment& environment, const Published<std::optional<std::string>>& message,
                     QWidget* parent)
    : OVWidget(environment, parent) {
    setFont(toQFont(theme::font::caption));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    changes_ = watch(message, [this](const std::optional<std::string>& words) {
        message_ = toQString(words.value_or(""));
        setAccessibleName(message_);
        update();
    });
}

QSize SavedNote::sizeHint() const {
    return {0, fontMetrics().height()};
}

QSize SavedNote::minimumSizeHint() const {
    return sizeHint();
}

void SavedNote::paintEvent(QPaintEvent* /*event*/) {
    if (message_.isEmpty()) return;
    QPainter painter(this);
    drawIcon(painter, OVIcon::check, QRectF(0, 0, iconSize, height()), iconSize, color(ColorToken::green));
    const QRectF words = QRectF(rect()).adjusted(iconSize + iconGap, 0, 0, 0);
    painter.setFont(font());
    painter.setPen(color(ColorToken::ink2));
    painter.drawText(words, Qt::AlignVCenter | Qt::AlignLeft,
                     QFontMetricsF(font()).elidedText(message_, Qt::ElideRight, words.width()));
}

}  // namespace ovrin
