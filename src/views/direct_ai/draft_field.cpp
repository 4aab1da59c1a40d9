#include "views/direct_ai/draft_field.h"

#include "base/watch.h"
#include "views/components/drawing.h"
#include "views/components/ov_text_editor.h"
#include "windows/direct_ai_view_model.h"

namespace ovrin {

Subscription bindDraft(DirectAIViewModel& viewModel, OVTextEditor& field) {
    QObject::connect(&field, &QTextEdit::textChanged, &field,
                     [&viewModel, &field] { viewModel.setDraft(field.toPlainText().toStdString()); });
    return watch(viewModel.draft(), [&field](const std::string& draft) { field.replaceText(toQString(draft)); });
}

}  // namespace ovrin
