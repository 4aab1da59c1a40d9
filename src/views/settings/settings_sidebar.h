// The sidebar of the settings window: the brand, and the pages.
#pragma once

#include <string>

#include "base/published.h"
#include "views/components/ov_widget.h"

namespace ovrin {

class OVChoiceBar;

class SettingsSidebar final : public OVWidget {
    Q_OBJECT

public:
    // The name of the brand's picture outlives it.
    SettingsSidebar(ViewEnvironment& environment, const Published<std::string>& brandImage, QWidget* parent = nullptr);

    OVChoiceBar& pages() { return *pages_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    OVChoiceBar* pages_;
};

}  // namespace ovrin
