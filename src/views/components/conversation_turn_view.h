// One turn of a conversation: the question in a bubble, the answer below it as it arrives.
#pragma once

#include <string>
#include <string_view>

#include "views/components/ov_streaming_text.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class BusyNote;
class OVLabel;
class QuestionBubble;

class ConversationTurnView final : public OVWidget {
    Q_OBJECT

public:
    struct Style {
        QString waitingWords;        // while nothing of the answer is there
        std::string answerLanguage;  // a BCP-47 tag
    };

    // question: UTF-8
    ConversationTurnView(ViewEnvironment& environment, std::string_view question, const Style& style,
                         QWidget* parent = nullptr);

    // The answer so far, in UTF-8. isBlank: it ended without text.
    void setAnswer(std::string_view answer, OVStreamingText::Progress progress, bool isBlank);

    // What is said of the model's thinking while it is waited for; may be empty.
    void setThinking(const std::string& words);

    OVStreamingText& question() const;
    OVStreamingText& answer() const { return *answer_; }

private:
    QuestionBubble* question_;
    OVStreamingText* answer_;
    BusyNote* waiting_;
    OVLabel* blank_;
};

}  // namespace ovrin
