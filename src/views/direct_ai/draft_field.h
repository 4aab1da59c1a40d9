// The field in which the question of the free chat is typed. The bar and the conversation have one each, over the same
// draft.
#pragma once

#include "base/published.h"

namespace ovrin {

class DirectAIViewModel;
class OVTextEditor;

// The field shows the draft and changes it for as long as the subscription lives. The view model outlives the field.
[[nodiscard]] Subscription bindDraft(DirectAIViewModel& viewModel, OVTextEditor& field);

}  // namespace ovrin
