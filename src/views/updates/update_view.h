// The content of the updater's window: in a few words while there is no update, with what is new once there is one.
#pragma once

#include <QString>
#include <string>
#include <vector>

#include "base/published.h"
#include "updates/update_view_model.h"
#include "views/components/ov_button.h"
#include "views/components/ov_widget.h"

class QBoxLayout;
class QStackedLayout;

namespace ovrin {

class OVErrorNote;
class OVLabel;
class OVPixelLoader;
class OVProgressBar;
class OVStreamingText;

class UpdateView final : public OVWidget {
    Q_OBJECT

public:
    // All of it outlives the view. topSpace: points at the top that belong to the window's bar.
    UpdateView(ViewEnvironment& environment, UpdateViewModel& viewModel, const Published<std::string>& brandImage,
               int topSpace, QWidget* parent = nullptr);

signals:
    void closeRequested();

private:
    // What both of its faces say about the status.
    struct Words {
        OVLabel* title = nullptr;
        OVLabel* message = nullptr;
        OVErrorNote* error = nullptr;
        OVPixelLoader* loader = nullptr;
    };

    Words makeWords();
    QWidget* makeBriefFace(const Published<std::string>& brandImage);
    QWidget* makeOfferFace(const Published<std::string>& brandImage);
    QWidget* makeNotes();
    QBoxLayout* makeButtons();
    OVButton* addButton(QBoxLayout& row, const QString& text, OVButton::Kind kind, void (UpdateView::*act)());
    void install() { viewModel_.install(); }
    void cancel() { viewModel_.cancelDownload(); }
    void retry() { viewModel_.retry(); }
    void openPage() { viewModel_.openPage(); }
    void skip();
    void refresh();
    void refreshWords(const Words& words, const UpdateViewModel::Status& status);
    void refreshOffer(const UpdateViewModel::Status& status);
    void refreshButtons(UpdatePhase phase);
    OVButton* mainButton(UpdatePhase phase) const;

    UpdateViewModel& viewModel_;
    int topSpace_;
    QStackedLayout* faces_;
    Words brief_;
    Words offer_;
    OVLabel* details_ = nullptr;
    OVStreamingText* notes_ = nullptr;
    OVLabel* noNotes_ = nullptr;
    OVProgressBar* progress_ = nullptr;
    OVButton* skip_ = nullptr;
    OVButton* later_ = nullptr;
    OVButton* close_ = nullptr;
    OVButton* cancel_ = nullptr;
    OVButton* retry_ = nullptr;
    OVButton* page_ = nullptr;
    OVButton* install_ = nullptr;
    Subscription changes_;
};

}  // namespace ovrin
