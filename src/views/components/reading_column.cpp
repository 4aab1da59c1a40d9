#include "views/components/reading_column.h"

#include <QUrl>
#include <QVBoxLayout>

#include "platform/linux/qt/started_programs.h"
#include "views/components/ov_scroll_area.h"
#include "views/components/ov_streaming_text.h"

namespace ovrin {

namespace {
constexpr int widest = 700;  // points, of the column
constexpr int margin = 16;
constexpr int topMargin = 4;  // for the ring around a text that begins there
constexpr int spacing = 16;
}  // namespace

ReadingColumn::ReadingColumn(ViewEnvironment& environment, OVScrollArea& area)
    : OVWidget(environment), area_(area), column_(new QVBoxLayout) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(margin, topMargin, margin, margin);
    auto* content = new QWidget;
    content->setMaximumWidth(widest);
    row->addWidget(content);
    auto* filled = new QVBoxLayout(content);
    filled->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(spacing);
    filled->addLayout(column_);
    filled->addStretch();
}

void ReadingColumn::makeReadable(OVStreamingText& text) {
    area_.keepInSight(text);
    connect(&text, &OVStreamingText::linkActivated, this, [](const QUrl& target) {
        // An answer may name anything; only what a browser or a mail program opens is safe to follow.
        const QString scheme = target.scheme();
        if (scheme == "https" || scheme == "http" || scheme == "mailto") openURL(target);
    });
}

}  // namespace ovrin
