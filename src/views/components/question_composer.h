// The field at the lower edge of a conversation with the button that sends what is in it. Return sends, Shift and
// Return begin a new line; the field grows with its lines.
#pragma once

#include <QKeyEvent>

#include "views/components/ov_widget.h"

namespace ovrin {

class OVTextEditor;
class SendButton;

class QuestionComposer final : public OVWidget {
    Q_OBJECT

public:
    // sendLabel names the button.
    QuestionComposer(ViewEnvironment& environment, const QString& sendLabel, QWidget* parent = nullptr);

    OVTextEditor& field() const { return *field_; }
    void setCanSend(bool canSend);

signals:
    void sendRequested();
    // A key that moves through the conversation above was pressed in the field.
    void scrollKeyPressed(QKeyEvent* event);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fitField();

    OVTextEditor* field_;
    SendButton* send_;
};

}  // namespace ovrin
