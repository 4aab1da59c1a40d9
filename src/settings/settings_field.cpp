#include "settings/settings_field.h"

namespace ovrin {
namespace {

std::string noteText(SettingsNote::Kind kind) {
    switch (kind) {
        case SettingsNote::Kind::loading:
            return "正在读取密钥环…";
        case SettingsNote::Kind::unread:
            return "未能读取，留空则保持不变";
        case SettingsNote::Kind::unsaved:
            return "未保存的更改";
        case SettingsNote::Kind::changedElsewhere:
            return "已在别处更改";
        case SettingsNote::Kind::none:
        case SettingsNote::Kind::provided:
            break;
    }
    return {};
}

}  // namespace

SettingsNote settingsNote(SettingsNote::Kind kind) {
    return {.kind = kind, .text = noteText(kind)};
}

SettingsNote providedNote(const std::string& variable, bool isShown) {
    std::string text = isShown ? "由环境变量 " + variable + " 提供" : "环境变量 " + variable + " 优先于此处的值";
    return {.kind = SettingsNote::Kind::provided, .text = std::move(text)};
}

}  // namespace ovrin
