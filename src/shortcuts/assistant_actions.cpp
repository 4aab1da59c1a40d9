#include "shortcuts/assistant_actions.h"

#include "shortcuts/action.h"

namespace ovrin {

void perform(OvShortcut shortcut, AssistantActions& actions) {
    description(shortcut).perform(actions);
}

}  // namespace ovrin
