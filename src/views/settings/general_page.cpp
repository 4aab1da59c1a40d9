#include "views/settings/general_page.h"

#include <QHBoxLayout>
#include <algorithm>

#include "platform/linux/qt/window_role.h"
#include "settings/settings_section.h"
#include "settings/settings_store.h"
#include "views/application/qt_application_icon.h"
#include "views/components/ov_button.h"
#include "views/components/ov_choice_bar.h"
#include "views/components/ov_picker.h"
#include "views/components/ov_switch.h"
#include "views/settings/saved_note.h"
#include "views/settings/settings_card.h"
#include "views/settings/settings_row.h"

namespace ovrin {

namespace {

template <typename Choices, typename Choice>
int indexOf(const Choices& choices, Choice choice) {
    return static_cast<int>(std::ranges::find(choices, choice) - choices.begin());
}

}  // namespace

GeneralPage::GeneralPage(ViewEnvironment& environment, SettingsStore& store)
    : SettingsPage(environment, toQString(title(SettingsSection::general)),
                   toQString(subtitle(SettingsSection::general))),
      store_(store) {
    add(makeTranslationCard());
    add(makeLookCard());
    add(makeSystemCard());
    fillBar();
}

SettingsCard* GeneralPage::makeTranslationCard() {
    auto* card = new SettingsCard(environment(), QStringLiteral("翻译偏好"));
    auto* picker = new OVPicker(environment(), QStringLiteral("默认目标语言"), {});
    auto* row = new SettingsRow(environment(), QStringLiteral("默认目标语言"),
                                QStringLiteral("源语言与目标相同时会自动切换中英文"), picker);
    card->addRow(row);
    const auto show = [this, picker] {
        const std::string& tag = store_.targetLanguage().value().value();
        const auto& options = store_.languageOptions().value();
        const auto known = std::ranges::find(options, tag, &SettingsStore::LanguageOption::tag);
        picker->setCurrent({.value = toQString(tag), .title = toQString(known == options.end() ? tag : known->name)});
    };
    binding_.watch(store_.languageOptions(), [picker, show](const auto& options) {
        std::vector<OVPicker::Option> choices;
        for (const auto& [tag, name] : options) choices.push_back({.value = toQString(tag), .title = toQString(name)});
        picker->setOptions(std::move(choices));
        show();
    });
    binding_.watch(store_.targetLanguage().value(), [show](const std::string& /*tag*/) { show(); });
    connect(picker, &OVPicker::picked, this,
            [this](const QString& tag) { store_.editTargetLanguage(tag.toStdString()); });
    binding_.line(row->line(), store_.targetLanguage());
    return card;
}

SettingsCard* GeneralPage::makeLookCard() {
    auto* card = new SettingsCard(environment(), QStringLiteral("外观"));
    std::vector<OVChoiceBar::Choice> modes;
    for (const AppAppearanceMode mode : allAppAppearanceModes) modes.push_back({.title = toQString(title(mode))});
    auto* theme = new OVChoiceBar(environment(), QStringLiteral("主题"), modes, OVChoiceBar::Look::segments);
    auto* themeRow = new SettingsRow(environment(), QStringLiteral("主题"), {}, theme);
    card->addRow(themeRow);
    const auto showMode = [theme](AppAppearanceMode mode) { theme->setCurrent(indexOf(allAppAppearanceModes, mode)); };
    binding_.watch(store_.appearanceMode().value(), showMode);
    binding_.line(themeRow->line(), store_.appearanceMode());
    connect(theme, &OVChoiceBar::chosen, this, [this, showMode](int index) {
        store_.updateAppearanceMode(allAppAppearanceModes.at(static_cast<std::size_t>(index)));
        showMode(store_.appearanceMode().value().value());  // which may have gone back
    });

    std::vector<OVChoiceBar::Choice> styles;
    for (const EntranceIconStyle style : allEntranceIconStyles) {
        styles.push_back({.title = toQString(title(style)), .picture = QtApplicationIcon::file(imageAsset(style))});
    }
    auto* icons = new OVChoiceBar(environment(), QStringLiteral("入口图标"), styles, OVChoiceBar::Look::pictures);
    auto* iconRow = new SettingsRow(environment(), QStringLiteral("入口图标"), {}, icons);
    card->addRow(iconRow);
    const auto showStyle = [icons](EntranceIconStyle style) {
        icons->setCurrent(indexOf(allEntranceIconStyles, style));
    };
    binding_.watch(store_.entranceIconStyle().value(), showStyle);
    binding_.line(iconRow->line(), store_.entranceIconStyle());
    connect(icons, &OVChoiceBar::chosen, this, [this, showStyle](int index) {
        store_.updateEntranceIcon(allEntranceIconStyles.at(static_cast<std::size_t>(index)));
        showStyle(store_.entranceIconStyle().value().value());
    });
    return card;
}

SettingsCard* GeneralPage::makeSystemCard() {
    auto* card = new SettingsCard(environment(), QStringLiteral("系统集成"));
    const auto add = [&](const QString& title, const QString& detail, const SettingsField<bool>& field,
                         std::function<void(bool)> edit) {
        auto* control = new OVSwitch(environment(), title);
        auto* row = new SettingsRow(environment(), title, detail, control);
        binding_.isOn(*control, field, std::move(edit));
        binding_.line(row->line(), field);
        card->addRow(row);
    };
    add(QStringLiteral("登录时启动"), QStringLiteral("在登录桌面后自动运行 Ovrin"), store_.launchAtLogin(),
        [this](bool isOn) { store_.editLaunchAtLogin(isOn); });
    if (!canStayOnTop()) return card;
    add(QStringLiteral("结果窗口置顶"), QStringLiteral("让 OCR 结果与追问窗口保持在其他窗口前面"),
        store_.resultWindowAlwaysOnTop(), [this](bool isOn) { store_.updateResultWindowAlwaysOnTop(isOn); });
    return card;
}

void GeneralPage::fillBar() {
    auto* save = new OVButton(environment(), QStringLiteral("保存更改"), OVButton::Kind::primary);
    connect(save, &QAbstractButton::clicked, this, [this] { store_.saveGeneral(); });
    bar().addWidget(new SavedNote(environment(), store_.savedMessage()), 1);
    bar().addWidget(save);
}

}  // namespace ovrin
