#include "views/settings/advanced_page.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "settings/settings_section.h"
#include "settings/settings_store.h"
#include "views/components/ov_alert.h"
#include "views/components/ov_button.h"
#include "views/components/ov_status_pill.h"
#include "views/components/ov_text_editor.h"
#include "views/settings/prompt_editor.h"
#include "views/settings/saved_note.h"
#include "views/settings/settings_card.h"
#include "views/settings/settings_row.h"

namespace ovrin {

namespace {
constexpr int promptGap = 4;
constexpr int buttonGap = 8;
}  // namespace

AdvancedPage::AdvancedPage(ViewEnvironment& environment, SettingsViewModel& viewModel)
    : SettingsPage(environment, toQString(title(SettingsSection::advanced)),
                   toQString(subtitle(SettingsSection::advanced))),
      viewModel_(viewModel),
      store_(viewModel.store()),
      capabilities_(new QWidget) {
    add(makePromptCard());
    add(makeDataCard());
    auto* column = new QVBoxLayout(capabilities_);
    column->setContentsMargins(0, 0, 0, 0);
    add(capabilities_);
    binding_.watch(viewModel_.capabilities(),
                   [this](const std::vector<Capability>& capabilities) { showCapabilities(capabilities); });
}

// What other programs have to do with it may have changed since the last look.
bool AdvancedPage::event(QEvent* event) {
    const bool comesUp = event->type() == QEvent::Show || (event->type() == QEvent::WindowActivate && isVisible());
    if (comesUp) viewModel_.advancedPageAppeared();
    return SettingsPage::event(event);
}

void AdvancedPage::showCapabilities(const std::vector<Capability>& capabilities) {
    auto* card = new SettingsCard(environment(), QStringLiteral("此桌面的能力"));
    if (capabilities.empty())
        card->addRow(new SettingsRow(environment(), QStringLiteral("正在检查…"), {}, new QWidget));
    for (const Capability& capability : capabilities) {
        const QString title = toQString(capability.title);
        const QString state = capability.isAvailable ? QStringLiteral("可用") : QStringLiteral("不可用");
        auto* pill = new OVStatusPill(
            environment(), state, capability.isAvailable ? OVStatusPill::Kind::success : OVStatusPill::Kind::warning);
        pill->setAccessibleName(QStringLiteral("%1：%2").arg(title, state));
        card->addRow(new SettingsRow(environment(), title, toQString(capability.note), pill));
    }
    qDeleteAll(capabilities_->findChildren<SettingsCard*>(Qt::FindDirectChildrenOnly));
    capabilities_->layout()->addWidget(card);
}

SettingsCard* AdvancedPage::makePromptCard() {
    auto* card = new SettingsCard(environment(), QStringLiteral("自定义 Prompt"), SettingsCard::Rows::together);
    auto* translation =
        new PromptEditor(environment(), QStringLiteral("翻译 Prompt"), QStringLiteral("留空使用内置专业翻译 Prompt"));
    auto* explanation =
        new PromptEditor(environment(), QStringLiteral("解释 Prompt"), QStringLiteral("留空使用内置解释 Prompt"));
    binding_.text(translation->editor(), store_.translationPrompt(),
                  [this](std::string text) { store_.editTranslationPrompt(std::move(text)); });
    binding_.line(translation->line(), store_.translationPrompt());
    binding_.text(explanation->editor(), store_.explanationPrompt(),
                  [this](std::string text) { store_.editExplanationPrompt(std::move(text)); });
    binding_.line(explanation->line(), store_.explanationPrompt());

    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 4, 0, 4);
    column->setSpacing(promptGap);
    column->addWidget(translation);
    column->addWidget(explanation);
    column->addWidget(makePromptBar());
    card->addRow(content);
    return card;
}

QWidget* AdvancedPage::makePromptBar() {
    auto* reset = new OVButton(environment(), QStringLiteral("恢复默认"), OVButton::Kind::secondary);
    auto* save = new OVButton(environment(), QStringLiteral("保存 Prompt"), OVButton::Kind::primary);
    connect(reset, &QAbstractButton::clicked, this, [this] { store_.resetPrompts(); });
    connect(save, &QAbstractButton::clicked, this, [this] { store_.savePrompts(); });
    auto* bar = new QWidget;
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(buttonGap);
    row->addWidget(new SavedNote(environment(), store_.savedMessage()), 1);
    row->addWidget(reset);
    row->addWidget(save);
    return bar;
}

SettingsCard* AdvancedPage::makeDataCard() {
    auto* card = new SettingsCard(environment(), QStringLiteral("权限与数据"));
    auto* pill = new OVStatusPill(environment(), {}, OVStatusPill::Kind::neutral);
    auto* accessibility = new SettingsRow(environment(), QStringLiteral("辅助功能"), {}, pill);
    binding_.watch(viewModel_.accessibility(), [pill, accessibility](const SettingsViewModel::Accessibility& state) {
        accessibility->line().setHint(toQString(state.detail));
        pill->set(toQString(state.pill), state.isTrusted ? OVStatusPill::Kind::success : OVStatusPill::Kind::warning);
    });
    card->addRow(accessibility);

    auto* clear =
        new OVButton(environment(), QStringLiteral("清除全部"), OVButton::Kind::danger, OVButton::Density::compact);
    clear->setAccessibleName(QStringLiteral("历史记录：清除全部"));
    connect(clear, &QAbstractButton::clicked, this, &AdvancedPage::askToClearHistory);
    card->addRow(new SettingsRow(environment(), QStringLiteral("历史记录"), QStringLiteral("清除后无法恢复"), clear));
    return card;
}

void AdvancedPage::askToClearHistory() {
    auto* alert = new OVAlert(environment(),
                              {.message = QStringLiteral("清除全部历史记录？"),
                               .informativeText = QStringLiteral("清除后无法恢复"),
                               .dismissButton = QStringLiteral("取消")},
                              *this);
    alert->addChoice(
        QStringLiteral("清除"), [this] { viewModel_.clearHistory(); }, OVAlert::Choice::destructive);
    alert->present();
}

}  // namespace ovrin
