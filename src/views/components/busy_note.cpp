#include "views/components/busy_note.h"

#include <QHBoxLayout>

#include "views/components/drawing.h"
#include "views/components/ov_label.h"
#include "views/components/ov_pixel_loader.h"

namespace ovrin {

using theme::ColorToken;

BusyNote::BusyNote(ViewEnvironment& environment, const QString& words, QWidget* parent)
    : OVWidget(environment, parent), detail_(new OVLabel(environment, {}, theme::font::body, ColorToken::ink3)) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(7);
    row->addWidget(new OVPixelLoader(environment, ColorToken::accentInk));
    row->addWidget(new OVLabel(environment, words, theme::font::body, ColorToken::ink2));
    row->addWidget(detail_);
    row->addStretch();
    detail_->hide();
}

void BusyNote::setDetail(const std::string& utf8) {
    detail_->setText(toQString(utf8));
    detail_->setVisible(!utf8.empty());
}

}  // namespace ovrin
