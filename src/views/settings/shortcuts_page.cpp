#include "views/settings/shortcuts_page.h"

#include <QEvent>
#include <tuple>

#include "base/watch.h"
#include "settings/settings_section.h"
#include "views/components/drawing.h"
#include "views/components/ov_label.h"
#include "views/settings/settings_card.h"
#include "views/settings/settings_row.h"
#include "views/shortcut_recorder/recorder.h"

namespace ovrin {

using theme::ColorToken;

ShortcutsPage::ShortcutsPage(ViewEnvironment& environment, const KeyboardLayout& layout,
                             ShortcutsPageViewModel& viewModel)
    : SettingsPage(environment, toQString(title(SettingsSection::shortcuts)),
                   toQString(subtitle(SettingsSection::shortcuts))),
      viewModel_(viewModel) {
    auto* card = new SettingsCard(environment, QStringLiteral("全局命令"));
    for (auto& row : viewModel.rows()) card->addRow(makeRow(row, layout));
    add(card);
    add(new OVLabel(environment, toQString(viewModel.note()), theme::font::caption, ColorToken::ink2,
                    OVLabel::Lines::wrapped));
}

SettingsRow* ShortcutsPage::makeRow(ShortcutRow& row, const KeyboardLayout& layout) {
    const QString name = toQString(title(row.shortcut()));
    auto* view = new SettingsRow(environment(), name, {},
                                 new KeyboardShortcuts::Recorder(environment(), layout, row.recorder(), name));
    subscriptions_.push_back(watch(std::tie(row.refusal(), row.sharing()), [&row, &line = view->line()] {
        const QString sharing = toQString(row.sharing()->value_or(""));
        const auto& refusal = row.refusal().value();
        line.setNote(sharing);
        line.setError(refusal ? toQString(*refusal) + sharing : QString());
    }));
    return view;
}

bool ShortcutsPage::event(QEvent* event) {
    if (event->type() == QEvent::Show || (event->type() == QEvent::WindowActivate && isVisible())) {
        viewModel_.didAppear();
    }
    return SettingsPage::event(event);
}

}  // namespace ovrin
