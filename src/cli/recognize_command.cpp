#include "cli/recognize_command.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/files.h"
#include "base/run_loop.h"
#include "platform/image_decoder.h"
#include "recognition/ocr_engine.h"
#include "recognition/ocr_result.h"
#include "storage/history_store.h"

namespace ovrin::cli {

namespace {

constexpr std::size_t largestPictureFile = std::size_t{512} << 20U;  // bytes

std::string readBytes(const std::string& path, const RecognizeServices& services) {
    return path == "-" ? services.terminal.readAll(largestPictureFile, services.stop)
                       : files::readFile(path, largestPictureFile);
}

OCRResult recognizeFile(const std::string& path, const RecognizeServices& services) {
    const std::string bytes = readBytes(path, services);
    Image image = services.decoder.decode(std::as_bytes(std::span(bytes)));
    return services.loop.complete(services.engine.recognize(std::move(image)), services.stop);
}

void print(const OCRResult& result, OutputForm form, Terminal& terminal) {
    if (form == OutputForm::json) {
        terminal.write(result.toJson(OCRResult::DateForm::iso8601).dump() + '\n');
    } else {
        terminal.write(result.fullText() + '\n');
    }
}

void printFailure(const std::string& path, const Error& failure, Terminal& terminal) {
    const auto* const ofFile = dynamic_cast<const files::FileError*>(&failure);
    if (ofFile != nullptr) return terminal.writeError(ofFile->systemDescription());
    terminal.writeError(path == "-" ? failure.errorDescription() : path + ": " + failure.errorDescription());
}

}  // namespace

int recognize(const Recognize& command, const RecognizeServices& services) {
    int status = 0;
    bool isFirst = true;
    for (const std::string& path : command.images) {
        try {
            const OCRResult result = recognizeFile(path, services);
            if (!isFirst && command.form == OutputForm::text) services.terminal.write("\n");
            isFirst = false;
            print(result, command.form, services.terminal);
            if (command.history == HistoryEntry::save) {
                services.history().save({.sourceText = result.fullText(),
                                         .resultText = std::nullopt,
                                         .recordType = historyRecordType::captureOCR});
                if (services.history().hasUnwrittenChanges()) {
                    throw Error("the history cannot be written; another program may be using it");
                }
            }
        } catch (const Error& failure) {
            printFailure(path, failure, services.terminal);
            status = 1;
        }
    }
    return status;
}

}  // namespace ovrin::cli
