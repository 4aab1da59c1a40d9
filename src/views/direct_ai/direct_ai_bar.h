// The free chat before its first question: the mark, a field and the button that sends.
#pragma once

#include <string>
#include <vector>

#include "base/published.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class DirectAIViewModel;
class OVTextEditor;

class DirectAIBar final : public OVWidget {
    Q_OBJECT

public:
    // The view model and the name of the brand's picture outlive it.
    DirectAIBar(ViewEnvironment& environment, DirectAIViewModel& viewModel, const Published<std::string>& brandImage);

    OVTextEditor& field() const { return *field_; }

private:
    OVTextEditor* field_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace ovrin
