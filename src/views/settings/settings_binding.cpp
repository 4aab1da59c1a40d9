#include "views/settings/settings_binding.h"

#include "views/components/ov_switch.h"
#include "views/components/ov_text_editor.h"
#include "views/components/ov_text_field.h"

namespace ovrin {

void SettingsBinding::text(OVTextField& control, const SettingsField<std::string>& field, EditText edit) {
    watch(field.value(), [&control](const std::string& value) {
        const QString text = toQString(value);
        if (text == control.text()) return;
        control.setText(text);
        control.setCursorPosition(0);  // a long address is recognised by its beginning
    });
    QObject::connect(&control, &QLineEdit::textEdited, &control,
                     [edit = std::move(edit)](const QString& text) { edit(text.toStdString()); });
}

void SettingsBinding::text(OVTextEditor& control, const SettingsField<std::string>& field, EditText edit) {
    watch(field.value(), [&control](const std::string& value) {
        const QString text = toQString(value);
        if (text == control.toPlainText()) return;
        control.replaceText(text);
        if (!control.hasFocus()) control.moveCursor(QTextCursor::Start);  // which shows its beginning
    });
    control.document()->clearUndoRedoStacks();  // what was stored is no edit
    QObject::connect(&control, &QTextEdit::textChanged, &control, [&control, &field, edit = std::move(edit)] {
        const std::string text = control.toPlainText().toStdString();
        if (text != field.value().value()) edit(text);
    });
}

void SettingsBinding::isOn(OVSwitch& control, const SettingsField<bool>& field, std::function<void(bool)> edit) {
    watch(field.value(), [&control](bool isOn) { control.setOn(isOn); });
    QObject::connect(&control, &QAbstractButton::clicked, &control,
                     [&control, &field, edit = std::move(edit)](bool isOn) {
                         edit(isOn);
                         control.setOn(field.value().value());  // which may have refused
                     });
}

}  // namespace ovrin
