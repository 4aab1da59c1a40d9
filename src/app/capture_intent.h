// What a screen capture is for. The order is also the stored index.
#pragma once

namespace ovrin {

enum class CaptureIntent { ocr, translate, silentOCR, whatIsThis };

}  // namespace ovrin
