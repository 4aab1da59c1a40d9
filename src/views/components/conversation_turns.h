// The turns of a conversation, one below the other.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/uuid.h"
#include "views/components/conversation_turn_view.h"
#include "views/components/ov_widget.h"

class QVBoxLayout;

namespace ovrin {

class ReadingColumn;

class ConversationTurns final : public OVWidget {
    Q_OBJECT

public:
    struct Turn {
        Uuid id;
        std::string_view question;  // UTF-8, as the answer
        std::string_view answer;    // so far
        bool isStreaming = false;
        bool isBlank = false;  // the answer ended without text
    };

    // It lies in the column.
    ConversationTurns(ViewEnvironment& environment, ReadingColumn& column, ConversationTurnView::Style style);

    // Oldest first. A turn that is already there keeps its place and what is selected in it.
    void show(std::span<const Turn> turns);
    // Of the turn whose answer is waited for.
    void setThinking(const std::string& words);

private:
    struct Shown {
        Uuid id;
        std::string question;
        ConversationTurnView* view;
    };
    Shown add(const Turn& turn);

    ReadingColumn& column_;
    ConversationTurnView::Style style_;
    QVBoxLayout* layout_;
    std::vector<Shown> shown_;
};

}  // namespace ovrin
