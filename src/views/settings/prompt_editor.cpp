#include "views/settings/prompt_editor.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include "views/components/drawing.h"
#include "views/components/ov_text_editor.h"

namespace ovrin {

using theme::ColorToken;

namespace {

constexpr int editorHeight = 96;
constexpr double cornerRadius = 9;
constexpr int padding = 6;
constexpr double lineHeight = 20;
constexpr int barSpace = 8;  // at the right edge, for the scroll bar

// The ground of the editor, with the ring of its focus.
class EditorGround final : public OVWidget {
public:
    EditorGround(ViewEnvironment& environment, QWidget* editor) : OVWidget(environment), editor_(editor) {
        setFixedHeight(editorHeight);
        setFocusProxy(editor);
        auto* layout = new QHBoxLayout(this);
        layout->setContentsMargins(padding, padding - 2, 2, padding - 2);
        layout->addWidget(editor);
        editor->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
        return OVWidget::eventFilter(watched, event);
    }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        drawFieldGround(painter, rect(), cornerRadius, editor_->hasFocus(), environment());
    }

private:
    QWidget* editor_;
};

}  // namespace

PromptEditor::PromptEditor(ViewEnvironment& environment, const QString& title, const QString& placeholder,
                           QWidget* parent)
    : OVWidget(environment, parent),
      editor_(new OVTextEditor(environment, placeholder)),
      line_(new SettingsLine(environment, {}, SettingsLine::Place::reserved)) {
    editor_->setAccessibleName(title);
    editor_->setTextStyle(theme::font::body, lineHeight);
    editor_->setRightInset(barSpace);
    connect(line_, &SettingsLine::changed, this, [this] { editor_->setAccessibleDescription(line_->words()); });
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new OVLabel(environment, title, theme::font::body, ColorToken::ink));
    column->addSpacing(7);
    column->addWidget(new EditorGround(environment, editor_));
    column->addSpacing(3);
    column->addWidget(line_);
}

}  // namespace ovrin
