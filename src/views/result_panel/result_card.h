// The card with what was recognised: the source text, or its translation with the source text behind a toggle.
#pragma once

#include <string>

#include "base/published.h"
#include "views/components/ov_surface.h"

class QVBoxLayout;

namespace ovrin {

class BusyNote;
class OVLabel;
class OVStreamingText;
class ResultPanelViewModel;
class SourceToggle;

class ResultCard final : public OVSurface {
    Q_OBJECT

public:
    // The view model outlives it.
    ResultCard(ViewEnvironment& environment, ResultPanelViewModel& viewModel, QWidget* parent = nullptr);

    // Its texts, which can be selected.
    OVStreamingText& translation() const { return *translation_; }
    OVStreamingText& original() const { return *original_; }

private:
    void addHeader(QVBoxLayout& column);
    void bind();
    void refresh();

    ResultPanelViewModel& viewModel_;
    OVStreamingText* translation_;
    OVStreamingText* original_;
    OVLabel* blank_;
    OVLabel* nothing_;
    BusyNote* busy_;
    QWidget* divider_;
    SourceToggle* toggle_;
    bool showsOriginal_ = false;
    Subscription changes_;
    Subscription thinking_;
};

}  // namespace ovrin
