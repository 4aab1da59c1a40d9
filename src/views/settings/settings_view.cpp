#include "views/settings/settings_view.h"

#include <QHBoxLayout>
#include <QShortcut>

#include "base/watch.h"
#include "settings/settings_view_model.h"
#include "views/components/ov_choice_bar.h"
#include "views/components/ov_page_stack.h"
#include "views/settings/about_page.h"
#include "views/settings/advanced_page.h"
#include "views/settings/general_page.h"
#include "views/settings/service_page.h"
#include "views/settings/settings_sidebar.h"

namespace ovrin {

namespace {

int indexOf(SettingsSection section) {
    return static_cast<int>(std::ranges::find(allSettingsSections, section) - allSettingsSections.begin());
}

}  // namespace

SettingsView::SettingsView(ViewEnvironment& environment, const Published<std::string>& brandImage,
                           SettingsViewModel& viewModel, SettingsPage* shortcutsPage)
    : OVWidget(environment), viewModel_(viewModel), pages_(new OVPageStack(environment)) {
    auto* sidebar = new SettingsSidebar(environment, brandImage);
    sections_ = &sidebar->pages();
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(sidebar);
    row->addWidget(pages_, 1);
    // In the order of the sections.
    pages_->add(new GeneralPage(environment, viewModel.store()));
    pages_->add(new ServicePage(environment, viewModel));
    pages_->add(shortcutsPage);
    pages_->add(new AdvancedPage(environment, viewModel));
    pages_->add(new AboutPage(environment, viewModel));
    connect(sections_, &OVChoiceBar::chosen, this,
            [this](int index) { viewModel_.select(allSettingsSections.at(static_cast<std::size_t>(index))); });
    addShortcuts();
    selection_ = watch(viewModel.selection(), [this](SettingsSection section) { showSection(section); });
}

void SettingsView::addShortcuts() {
    const auto add = [this](const QList<QKeySequence>& keys, auto action) {
        auto* shortcut = new QShortcut(this);
        shortcut->setKeys(keys);
        connect(shortcut, &QShortcut::activated, this, action);
    };
    add({Qt::CTRL | Qt::Key_Tab}, [this] { viewModel_.selectNext(); });
    // With Shift the key has another name on some layouts.
    add({Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, Qt::CTRL | Qt::SHIFT | Qt::Key_Backtab},
        [this] { viewModel_.selectPrevious(); });
    for (const SettingsSection section : allSettingsSections) {
        const int key = Qt::Key_1 + indexOf(section);
        add({Qt::ALT | static_cast<Qt::Key>(key)}, [this, section] { viewModel_.select(section); });
    }
}

void SettingsView::showSection(SettingsSection section) {
    const int index = indexOf(section);
    // What had the keyboard leaves the screen with its page.
    const QWidget* const focused = window()->focusWidget();
    const bool leavesFocus = index != pages_->current() && focused != nullptr && pages_->isAncestorOf(focused);
    if (leavesFocus) focusSidebar();
    sections_->setCurrent(index);
    pages_->show(index, viewModel_.movesForward() ? OVPageStack::Direction::forward : OVPageStack::Direction::backward);
    if (section == SettingsSection::advanced) viewModel_.refresh();  // what the session permits may have changed
}

void SettingsView::focusSidebar() {
    sections_->focusCurrent();
}

}  // namespace ovrin
