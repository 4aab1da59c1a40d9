#include "views/settings/service_page.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>

#include "settings/settings_section.h"
#include "settings/settings_store.h"
#include "views/components/ov_button.h"
#include "views/components/ov_choice_bar.h"
#include "views/components/ov_error_note.h"
#include "views/components/ov_label.h"
#include "views/components/ov_secure_field.h"
#include "views/components/ov_status_pill.h"
#include "views/components/ov_text_field.h"
#include "views/settings/header_rows.h"
#include "views/settings/saved_note.h"
#include "views/settings/settings_card.h"
#include "views/settings/settings_row.h"

namespace ovrin {

namespace {

constexpr std::array standards{ModelAPIStandard::openAICompatible, ModelAPIStandard::anthropic};
constexpr qsizetype longestFailure = 400;  // in UTF-16 units: the cards keep most of the page
constexpr int tokenFieldWidth = 132;
constexpr int cardGap = 8;

OVStatusPill::Kind pillKind(SettingsViewModel::ConnectionStatus::Kind kind) {
    switch (kind) {
        case SettingsViewModel::ConnectionStatus::Kind::active:
            return OVStatusPill::Kind::active;
        case SettingsViewModel::ConnectionStatus::Kind::success:
            return OVStatusPill::Kind::success;
        case SettingsViewModel::ConnectionStatus::Kind::error:
            return OVStatusPill::Kind::error;
        case SettingsViewModel::ConnectionStatus::Kind::neutral:
            break;
    }
    return OVStatusPill::Kind::neutral;
}

}  // namespace

ServicePage::ServicePage(ViewEnvironment& environment, SettingsViewModel& viewModel)
    : SettingsPage(environment, toQString(title(SettingsSection::service)),
                   toQString(subtitle(SettingsSection::service))),
      viewModel_(viewModel),
      store_(viewModel.store()) {
    add(makeConnectionCard());
    add(makeHeaderCard());
    addFailure();
    fillBar();
}

SettingsCard* ServicePage::makeConnectionCard() {
    auto* card = new SettingsCard(environment(), QStringLiteral("模型连接"), SettingsCard::Rows::together);
    addStandard(*card);
    url_ = new OVTextField(environment(), {});
    auto* row = new SettingsRow(environment(), QStringLiteral("连接 URL"), {}, url_, SettingsRow::Layout::field);
    binding_.text(*url_, store_.connectionURL(),
                  [this](std::string text) { store_.editConnectionURL(std::move(text)); });
    binding_.line(row->line(), store_.connectionURL());
    card->addRow(row);
    addKey(*card);
    addModel(*card);
    addTokens(*card);
    return card;
}

void ServicePage::addStandard(SettingsCard& card) {
    std::vector<OVChoiceBar::Choice> choices;
    for (const ModelAPIStandard standard : standards) choices.push_back({.title = toQString(title(standard))});
    auto* picker = new OVChoiceBar(environment(), QStringLiteral("API 规范"), choices, OVChoiceBar::Look::segments);
    auto* row = new SettingsRow(environment(), QStringLiteral("API 规范"), {}, picker, SettingsRow::Layout::field);
    binding_.watch(store_.apiStandard().value(), [picker](ModelAPIStandard standard) {
        picker->setCurrent(static_cast<int>(std::ranges::find(standards, standard) - standards.begin()));
    });
    binding_.line(row->line(), store_.apiStandard());
    connect(picker, &OVChoiceBar::chosen, this,
            [this](int index) { store_.updateAPIStandard(standards.at(static_cast<std::size_t>(index))); });
    card.addRow(row);
}

void ServicePage::addKey(SettingsCard& card) {
    auto* key = new OVSecureField(environment(), QStringLiteral("sk-…"), QStringLiteral("显示 API Key"));
    auto* row = new SettingsRow(environment(), QStringLiteral("API Key"), {}, key, SettingsRow::Layout::field);
    binding_.text(key->field(), store_.apiKey(), [this](std::string text) { store_.editAPIKey(std::move(text)); });
    binding_.line(row->line(), store_.apiKey());
    binding_.watch(store_.keyStorageNote(), [row](const std::string& note) { row->line().setHint(toQString(note)); });
    binding_.watch(store_.isLoadingKeyring(), [key](bool isLoading) { key->setEnabled(!isLoading); });
    card.addRow(row);
}

// The field is alone in its line so that what offers models to choose from can stand beside it.
void ServicePage::addModel(SettingsCard& card) {
    model_ = new OVTextField(environment(), {});
    auto* line = new QWidget;
    line->setFocusProxy(model_);
    auto* slot = new QHBoxLayout(line);
    slot->setContentsMargins(0, 0, 0, 0);
    slot->addWidget(model_, 1);
    auto* row = new SettingsRow(environment(), QStringLiteral("模型"), {}, line, SettingsRow::Layout::field);
    binding_.text(*model_, store_.model(), [this](std::string text) { store_.editModel(std::move(text)); });
    binding_.line(row->line(), store_.model());
    card.addRow(row);
}

void ServicePage::addTokens(SettingsCard& card) {
    auto* tokens = new OVTextField(environment(), {});
    tokens->setFixedWidth(tokenFieldWidth);
    auto* row =
        new SettingsRow(environment(), QStringLiteral("最大输出 Token"), {}, tokens, SettingsRow::Layout::field);
    binding_.text(*tokens, store_.maxOutputTokens(),
                  [this](std::string text) { store_.editMaxOutputTokens(std::move(text)); });
    binding_.line(row->line(), store_.maxOutputTokens());
    tokensError_ = &row->line().errorText();
    card.addRow(row);
}

SettingsCard* ServicePage::makeHeaderCard() {
    auto* card = new SettingsCard(environment(), QStringLiteral("自定义 Header"), SettingsCard::Rows::together);
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 2, 0, 2);
    column->setSpacing(cardGap);
    auto* hint = new OVLabel(environment(), {}, theme::font::caption, theme::ColorToken::ink2, OVLabel::Lines::wrapped);
    auto* rows = new HeaderRows(environment(), store_);
    rows->setTabPredecessor(*tokensError_);
    auto* add =
        new OVButton(environment(), QStringLiteral("添加"), OVButton::Kind::secondary, OVButton::Density::compact);
    add->setOVIcon(OVIcon::plus);
    add->setAccessibleName(QStringLiteral("添加 Header"));
    auto* line = new SettingsLine(environment(), {}, SettingsLine::Place::reserved);
    auto* foot = new QHBoxLayout;
    foot->setSpacing(12);
    foot->addWidget(add);
    foot->addWidget(line, 1);
    column->addWidget(hint);
    column->addWidget(rows);
    column->addLayout(foot);
    card->addRow(content);

    binding_.watch(store_.customHeaders().value(), [rows](const auto& headers) { rows->show(headers); });
    binding_.line(*line, store_.customHeaders());
    binding_.watch(store_.isLoadingKeyring(), [rows, add](bool isLoading) {
        rows->setEnabled(!isLoading);
        add->setEnabled(!isLoading);
    });
    binding_.watch(store_.apiStandard().value(), [this, hint, rows](ModelAPIStandard standard) {
        const ServiceHints hints = serviceHints(standard);
        hint->setText(toQString(hints.automaticHeaders));
        rows->setNamePlaceholder(toQString(hints.headerNamePlaceholder));
        url_->setPlaceholderText(toQString(hints.connectionURLPlaceholder));
        model_->setPlaceholderText(toQString(hints.modelPlaceholder));
    });
    connect(add, &QAbstractButton::clicked, this, [this, rows] {
        store_.addHeader();
        rows->focusLast();
    });
    connect(rows, &HeaderRows::emptied, add, [add] { add->setFocus(Qt::TabFocusReason); });
    return card;
}

void ServicePage::addFailure() {
    auto* note = new OVErrorNote(environment());
    addAboveBar(note);
    binding_.watch(viewModel_.connectionStatus(), [note](const SettingsViewModel::ConnectionStatus& status) {
        const QString message = beginning(toQString(status.message), longestFailure);
        note->setMessage(message.isEmpty() ? std::nullopt : std::optional(message.toStdString()));
    });
}

OVButton* ServicePage::addButton(const QString& title, bool isPrimary, const Published<bool>& isPossible,
                                 std::function<void()> action) {
    auto* button = new OVButton(environment(), title, isPrimary ? OVButton::Kind::primary : OVButton::Kind::secondary);
    binding_.watch(isPossible, [button](bool isEnabled) { button->setEnabled(isEnabled); });
    connect(button, &QAbstractButton::clicked, this, std::move(action));
    bar().addWidget(button);
    return button;
}

void ServicePage::fillBar() {
    auto* pill = new OVStatusPill(environment(), {}, OVStatusPill::Kind::neutral);
    binding_.watch(viewModel_.connectionStatus(), [pill](const SettingsViewModel::ConnectionStatus& status) {
        pill->set(toQString(status.pill), pillKind(status.kind));
    });
    bar().addWidget(pill);
    bar().addWidget(new SavedNote(environment(), store_.savedMessage()), 1);
    OVButton* const reload =
        addButton(QStringLiteral("重新读取"), false, store_.canReloadKeyring(), [this] { store_.reloadKeyring(); });
    binding_.watch(store_.canReloadKeyring(), [reload](bool isOffered) { reload->setVisible(isOffered); });
    addButton(QStringLiteral("恢复默认"), false, store_.canResetService(), [this] { store_.resetService(); });
    addButton(QStringLiteral("测试连接"), false, store_.canTestConnection(), [this] { store_.testConnection(); });
    addButton(QStringLiteral("保存配置"), true, store_.canSaveService(), [this] { store_.saveService(); });
}

}  // namespace ovrin
