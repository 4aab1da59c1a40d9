// The demonstration page on paper: a title and the sentences of each language in type of its own.
#pragma once

#include <QPixmap>
#include <QRect>
#include <QWidget>
#include <vector>

namespace ovrin {

class PageView final : public QWidget {
    Q_OBJECT

public:
    PageView();

    struct Line {
        QString text;
        QRect area;  // of the ink with some room around it, in the widget's coordinates
    };
    const std::vector<Line>& lines() const { return lines_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Text {
        QString text;
        QFont font;
        QColor color;
        QPoint baseline;
    };
    void layOut();

    std::vector<Text> texts_;
    std::vector<Line> lines_;
    std::vector<int> rules_;  // heights of the lines between the sections
};

}  // namespace ovrin
