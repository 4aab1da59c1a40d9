#include "language/selection_error.h"

#include <utility>

namespace ovrin {

SelectionError::SelectionError(Case errorCase, std::string description)
    : Error(std::move(description)), case_(errorCase) {}

SelectionError SelectionError::accessibilityPermissionRequired() {
    return {Case::accessibilityPermissionRequired, "需要辅助功能权限才能读取或替换其他应用中的选中文字。"};
}

SelectionError SelectionError::noSelection() {
    return {Case::noSelection, "没有读取到选中的文字，请先选中文字后再试。"};
}

SelectionError SelectionError::pictureTooLarge() {
    return {Case::pictureTooLarge, "剪贴板中的图片过大，未读取选中文字。"};
}

}  // namespace ovrin
