#include "recognition/ocr_engine_error.h"

#include <utility>

namespace ovrin {

OCREngineError::OCREngineError(Case errorCase, std::string description)
    : Error(std::move(description)), case_(errorCase) {}

OCREngineError OCREngineError::recognitionFailed(const std::string& reason) {
    return {Case::recognitionFailed, "文字识别失败：" + reason};
}

OCREngineError OCREngineError::invalidImage() {
    return {Case::invalidImage, "无法读取截图图像。"};
}

OCREngineError OCREngineError::noTextFound() {
    return {Case::noTextFound, "没有在所选区域中识别到文字。"};
}

}  // namespace ovrin
