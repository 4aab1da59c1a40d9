// What the tests of the clipboards of both window systems have in common.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/run_loop.h"
#include "base/worker_executor.h"
#include "platform/clipboard_service.h"
#include "platform/image_encoder.h"
#include "platform/linux/recognition/linux_image_decoder.h"

namespace ovrin {

inline std::vector<std::byte> bytesOf(const std::string& text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

// Three megabytes that repeat nowhere.
inline std::string largeData() {
    std::string large(3'000'000, '\0');
    for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>(i * 7919 >> 5U);
    return large;
}

// "Encodes" by naming the type before the bytes, and cannot make TIFF.
class NamingEncoder final : public ImageEncoder {
public:
    bool canEncode(const std::string& type) const override { return type != "image/tiff"; }
    std::vector<std::byte> encode(std::span<const std::byte> picture, const std::string& type) const override {
        std::vector<std::byte> made = bytesOf(type + " of ");
        made.insert(made.end(), picture.begin(), picture.end());
        return made;
    }
};

class ClipboardTest : public testing::Test {
protected:
    // What the user reads when the text cannot be had.
    std::string failureOf(ClipboardService& of, ClipboardSource source = ClipboardSource::clipboard) {
        try {
            loop.complete(of.readString(source));
            return "";
        } catch (const Error& error) {
            return error.errorDescription();
        }
    }

    RunLoop loop;
    LinuxImageDecoder decoder;
    NamingEncoder encoder;
    WorkerExecutor workers{1};
};

}  // namespace ovrin
