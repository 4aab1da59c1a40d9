#include "shortcuts/refusal_notice.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

#include "base/files.h"
#include "base/uuid.h"
#include "storage/state_key.h"

namespace ovrin {

namespace {

using KeyboardShortcuts::Registry;
using Kind = KeyboardShortcuts::RegistrationState::Kind;

// The shortcuts with their combinations: another combination that is refused as well is news, where any would work.
std::string signature(const std::vector<OvShortcut>& refused, const Registry& registry) {
    if (registry.problem() && !refused.empty()) return *registry.problem();
    std::string text;
    for (const auto shortcut : refused) {
        const auto combination = registry.getShortcut(name(shortcut)).value_or(KeyboardShortcuts::Shortcut());
        text += name(shortcut).rawValue + "=" + std::to_string(combination.carbonKeyCode) + "+" +
                std::to_string(combination.carbonModifiers) + ";";
    }
    return text;
}

std::string sentence(const std::vector<OvShortcut>& refused, const Registry& registry) {
    if (registry.problem()) return *registry.problem() + "点击此通知查看可以绑定的命令。";
    std::string text;
    for (const auto shortcut : refused) {
        text.append(text.empty() ? "“" : "、“").append(title(shortcut)).append("”（");
        text.append(registry.shortcutDisplay(name(shortcut)).value_or("")).append("）");
    }
    return text + "没有生效，点击此通知重新设置。";
}

}  // namespace

RefusalNotice::RefusalNotice(Surroundings surroundings) : surroundings_(std::move(surroundings)) {}

void RefusalNotice::tell() {
    if (!isAnswerMissing()) return tellAnswers();
    for (const auto shortcut : allOvShortcuts) {
        answers_.push_back(surroundings_.registry.registrationState(name(shortcut)).onDidChange([this](const auto&) {
            if (isAnswerMissing()) return;
            answers_.clear();
            tellAnswers();
        }));
    }
}

bool RefusalNotice::isAnswerMissing() {
    return std::any_of(allOvShortcuts.begin(), allOvShortcuts.end(), [this](OvShortcut shortcut) {
        return surroundings_.registry.registrationState(name(shortcut))->kind == Kind::unknown;
    });
}

std::vector<OvShortcut> RefusalNotice::refused() {
    std::vector<OvShortcut> found;
    std::copy_if(allOvShortcuts.begin(), allOvShortcuts.end(), std::back_inserter(found), [this](OvShortcut shortcut) {
        return surroundings_.registry.registrationState(name(shortcut))->kind == Kind::refused;
    });
    return found;
}

void RefusalNotice::tellAnswers() {
    const auto found = refused();
    const std::string told = signature(found, surroundings_.registry);
    if (told == surroundings_.state.string(stateKey::announcedRefusedShortcuts).value_or("")) return;
    if (!found.empty()) {
        surroundings_.notifications.add(
            {.identifier = Uuid::random().text(),
             .title = surroundings_.registry.problem() ? "快捷键无法使用" : "部分快捷键无法使用",
             .body = sentence(found, surroundings_.registry),
             .activated = surroundings_.showShortcuts});
    }
    try {
        surroundings_.state.setString(stateKey::announcedRefusedShortcuts, told);
    } catch (const files::FileError&) {
        return;  // it is told again at the next start
    }
}

}  // namespace ovrin
