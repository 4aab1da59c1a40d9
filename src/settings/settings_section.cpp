#include "settings/settings_section.h"

#include <algorithm>
#include <cstddef>

namespace ovrin {

namespace {

struct Definition {
    std::string_view title;
    std::string_view subtitle;
    std::string_view commandName;
};

constexpr std::array<Definition, allSettingsSections.size()> definitions{{
    {"通用", "控制默认语言与应用行为", "general"},
    {"服务", "连接 OpenAI 兼容或 Anthropic 模型", "service"},
    {"快捷键", "全局唤起最常用的 OCR、翻译与 AI 动作", "shortcuts"},
    {"高级", "自定义 Prompt、权限与数据", "advanced"},
    {"关于", "快捷、私密、专注的 Linux OCR 助手", "about"},
}};

const Definition& definition(SettingsSection section) {
    return definitions.at(static_cast<std::size_t>(section));
}

}  // namespace

std::string_view title(SettingsSection section) {
    return definition(section).title;
}

std::string_view subtitle(SettingsSection section) {
    return definition(section).subtitle;
}

std::string_view commandName(SettingsSection section) {
    return definition(section).commandName;
}

std::optional<SettingsSection> settingsSection(std::string_view commandName) {
    const auto* const found = std::ranges::find(definitions, commandName, &Definition::commandName);
    if (found == definitions.end()) return std::nullopt;
    return allSettingsSections.at(static_cast<std::size_t>(found - definitions.begin()));
}

}  // namespace ovrin
