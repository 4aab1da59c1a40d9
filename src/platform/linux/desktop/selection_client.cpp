#include "platform/linux/desktop/selection_client.h"

#include <algorithm>
#include <array>

#include "base/error.h"

namespace ovrin {

void throwOwnerIsSilent(ClipboardSource source) {
    throw Error(source == ClipboardSource::primary ? "选中文字的程序没有响应，请稍后再试。"
                                                   : "复制内容的程序没有响应，请重新复制后再试。");
}

void throwTooMuch(ClipboardSource source) {
    throw Error(source == ClipboardSource::primary ? "选中的内容过大，无法读取。" : "剪贴板中的内容过大，无法读取。");
}

bool isMetaTarget(std::string_view target) {
    constexpr std::array metaTargets{"TARGETS",          "MULTIPLE",        "TIMESTAMP", "SAVE_TARGETS",
                                     "INSERT_SELECTION", "INSERT_PROPERTY", "DELETE"};
    return std::ranges::find(metaTargets, target) != metaTargets.end();
}

}  // namespace ovrin
