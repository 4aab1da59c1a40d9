// A short text in a rounded bubble at the right edge: as wide as it has to be, up to most of the width.
#pragma once

#include <string_view>

#include "views/components/ov_streaming_text.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class QuestionBubble final : public OVWidget {
    Q_OBJECT

public:
    // UTF-8
    QuestionBubble(ViewEnvironment& environment, std::string_view text, QWidget* parent = nullptr);

    OVStreamingText& text() { return *text_; }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int textWidthFor(int width) const;

    OVStreamingText* text_;
    int naturalWidth_ = 0;  // of the text, in points
};

}  // namespace ovrin
