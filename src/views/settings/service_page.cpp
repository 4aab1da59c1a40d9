#include "views/settings/service_page.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>

#include "settings/service_standard.h"
#include "settings/settings_section.h"
#include "settings/settings_store.h"
#include "views/components/ov_button.h"
#include "views/components/ov_choice_bar.h"
#include "views/components/ov_error_note.h"
#include "views/components/ov_label.h"
#include "views/components/ov_menu.h"
#include "views/components/ov_secure_field.h"
#include "views/components/ov_status_pill.h"
#include "views/components/ov_text_field.h"
#include "views/components/tab_order.h"
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
constexpr int menuGap = 4;
constexpr qsizetype longestModelName = 60;  // in a menu, in UTF-16 units

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

// In a menu an ampersand would mark a key, and a tab the right edge.
QString menuText(const std::string& name) {
    return beginning(toQString(name), longestModelName).simplified().replace(QLatin1Char('&'), QLatin1String("&&"));
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
    addLocalServices(*card);
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

// The services of this machine, each a button that fills the fields below.
void ServicePage::addLocalServices(SettingsCard& card) {
    auto* services = new QWidget;
    auto* slot = new QHBoxLayout(services);
    slot->setContentsMargins(0, 0, 0, 0);
    slot->setSpacing(cardGap);
    auto* row = new SettingsRow(environment(), QStringLiteral("本机服务"), {}, services, SettingsRow::Layout::field);
    const auto show = [this, slot, row] { showLocalServices(*slot, row->line()); };
    binding_.watch(viewModel_.localServices(), [show](const auto& /*services*/) { show(); });
    binding_.watch(store_.isLoadingKeyring(), [services](bool isLoading) { services->setEnabled(!isLoading); });
    card.addRow(row);
}

void ServicePage::showLocalServices(QHBoxLayout& slot, SettingsLine& line) {
    while (QLayoutItem* const item = slot.takeAt(0)) {
        if (item->widget() != nullptr) item->widget()->deleteLater();
        delete item;
    }
    const auto& found = viewModel_.localServices().value();
    if (!found || found->empty()) {
        const QString state = found ? QStringLiteral("没有正在运行的服务") : QStringLiteral("正在查找…");
        slot.addWidget(new OVLabel(environment(), state, theme::font::body, theme::ColorToken::ink2));
        line.setHint(QStringLiteral("Ollama、LM Studio、llama.cpp 或 vLLM 启动后会显示在这里"));
        return;
    }
    QWidget* before = tabStopBefore(*slot.parentWidget());
    for (const LocalService& service : *found) {
        const QString name = toQString(service.name);
        const bool hasModels = !service.models.empty();
        auto* button = new OVButton(environment(), hasModels ? name : QStringLiteral("%1（没有模型）").arg(name),
                                    OVButton::Kind::secondary, OVButton::Density::compact);
        button->setEnabled(hasModels);
        button->setAccessibleName(QStringLiteral("使用 %1").arg(button->text()));
        button->setToolTip(toQString(service.connectionURL));
        connect(button, &QAbstractButton::clicked, this, [this, service] { store_.useLocalService(service); });
        slot.addWidget(button);
        if (before != nullptr) setTabOrder(before, button);
        before = button;
    }
    slot.addStretch();
    line.setHint(QStringLiteral("点击即填入连接 URL 与模型，并清空 API Key"));
}

bool ServicePage::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::Show:
            viewModel_.servicePageAppeared();
            break;
        case QEvent::WindowActivate:
            if (isVisible()) viewModel_.servicePageAppeared();
            break;
        case QEvent::Hide:
            viewModel_.servicePageDisappeared();
            break;
        default:
            break;
    }
    return SettingsPage::event(event);
}

// What the service has to choose from stands beside the field, which takes any name.
void ServicePage::addModel(SettingsCard& card) {
    model_ = new OVTextField(environment(), {});
    models_ = new OVIconButton(environment(), OVIcon::chevronDown, QStringLiteral("选择模型"));
    auto* line = new QWidget;
    line->setFocusProxy(model_);
    auto* slot = new QHBoxLayout(line);
    slot->setContentsMargins(0, 0, 0, 0);
    slot->setSpacing(cardGap);
    slot->addWidget(model_, 1);
    slot->addWidget(models_);
    auto* row = new SettingsRow(environment(), QStringLiteral("模型"), {}, line, SettingsRow::Layout::field);
    binding_.text(*model_, store_.model(), [this](std::string text) { store_.editModel(std::move(text)); });
    binding_.line(row->line(), store_.model());
    connect(models_, &QAbstractButton::clicked, this, [this] { store_.listModels(); });
    binding_.watch(store_.modelChoices(), [this, row](const SettingsStore::ModelChoices& choices) {
        using Kind = SettingsStore::ModelChoices::Kind;
        row->line().setHint(choices.kind == Kind::loading ? QStringLiteral("正在读取模型列表…") : QString());
        if (choices.kind == Kind::ready) openModelMenu();
    });
    card.addRow(row);
}

void ServicePage::openModelMenu() {
    if (!isVisible() || !isActiveWindow()) return;
    auto* menu = new OVMenu(environment(), models_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setAttribute(Qt::WA_NoMouseReplay);  // the click on the button that closes the menu must not open it again
    const SettingsStore::ModelChoices& choices = store_.modelChoices().value();
    for (const std::string& name : choices.names) {
        QAction* const item = menu->addAction(menuText(name), this, [this, name] { store_.editModel(name); });
        if (toQString(name) != model_->text()) continue;
        menu->setItemIcon(*item, OVIcon::check);
        menu->setActiveAction(item);
    }
    if (choices.omitted > 0) {
        menu->add(QStringLiteral("还有 %1 个，请直接填写名称").arg(choices.omitted), OVMenu::Entry::unavailable, [] {});
    }
    const QSize size = menu->sizeHint();
    menu->popup(models_->mapToGlobal(QPoint(models_->width() - size.width(), models_->height() + menuGap)));
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
