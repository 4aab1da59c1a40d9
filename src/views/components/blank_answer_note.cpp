#include "views/components/blank_answer_note.h"

#include "model/deep_seek_error.h"
#include "views/components/drawing.h"
#include "views/components/ov_label.h"

namespace ovrin {

OVLabel* makeBlankAnswerNote(ViewEnvironment& environment) {
    return new OVLabel(environment, toQString(DeepSeekError::emptyResponse().errorDescription()), theme::font::body,
                       theme::ColorToken::ink2, OVLabel::Lines::wrapped);
}

}  // namespace ovrin
