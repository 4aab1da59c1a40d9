// What stands in place of an answer that ended without text.
#pragma once

namespace ovrin {

class OVLabel;
class ViewEnvironment;

OVLabel* makeBlankAnswerNote(ViewEnvironment& environment);

}  // namespace ovrin
