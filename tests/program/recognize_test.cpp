// ovrin recognize on pictures that are none, and with parts of its installation missing.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <leptonica/allheaders.h>

#include "program/running_program.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

void write(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string littleEndian(std::uint32_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xffU);
    return bytes;
}

// A picture file with 32 bits a pixel; as much of it as there is in pixels.
std::string bitmap(std::uint32_t width, std::uint32_t height, const std::string& pixels) {
    constexpr std::uint32_t headSize = 54;
    std::string bytes = "BM" + littleEndian(headSize + 4 * width * height) + littleEndian(0) + littleEndian(headSize);
    bytes += littleEndian(40) + littleEndian(width) + littleEndian(height) + std::string("\1\0\40\0", 4);
    return bytes + std::string(24, '\0') + pixels;
}

// A PNG of one line of black text on white.
std::string picture(const std::string& text) {
    Pix* canvas = pixCreate(640, 80, 32);
    pixSetAll(canvas);
    L_Bmf* font = bmfCreate(nullptr, 20);
    pixSetTextline(canvas, font, text.c_str(), 0, 40, 50, nullptr, nullptr);
    l_uint8* data = nullptr;
    std::size_t size = 0;
    pixWriteMemPng(&data, &size, canvas, 0);
    std::string bytes(reinterpret_cast<const char*>(data), size);
    lept_free(data);
    bmfDestroy(&font);
    pixDestroy(&canvas);
    return bytes;
}

class RecognizeProgram : public testing::Test {
protected:
    std::string file(const std::string& name, const std::string& bytes) const {
        write(pictures_.path() / name, bytes);
        return pictures_.path() / name;
    }

    // One line that names the cause, status 1, and nothing left behind.
    std::string failureOf(const RunningProgram::Setup& setup) const {
        const auto outcome = runProgram(home_, setup);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(std::ranges::count(outcome.error, '\n'), 1) << outcome.error;
        EXPECT_TRUE(home_.files().empty());
        return outcome.error;
    }
    std::string failureOf(const std::string& path) const { return failureOf({.arguments = {"recognize", path}}); }

    TestHome home_;
    TemporaryDirectory pictures_;
};

TEST_F(RecognizeProgram, BadPicturesAreNamedWithTheirCause) {
    const std::string whole = picture("Quarterly report");
    const auto expectFailure = [&](const std::string& name, const std::string& bytes, const std::string& cause) {
        const std::string path = file(name, bytes);
        EXPECT_THAT(failureOf(path), testing::AllOf(StartsWith(path + ": "), HasSubstr(cause)));
    };
    expectFailure("notes.txt", "this is no picture at all", "不是图片");
    expectFailure("empty.png", "", "是空的");
    expectFailure("cut.png", whole.substr(0, whole.size() / 2), "图片已损坏或不完整");
    expectFailure("head.png", whole.substr(0, 20), "图片已损坏");
    expectFailure("dot.bmp", bitmap(1, 1, std::string(4, '\xff')), "");
    expectFailure("huge.bmp", bitmap(20000, 20000, std::string(64, '\xff')), "图片过大：20000 × 20000");
    EXPECT_THAT(failureOf(pictures_.path() / "none.png"), HasSubstr("none.png: No such file"));
    EXPECT_THAT(failureOf(pictures_.path().string()), HasSubstr("Is a directory"));
    EXPECT_THAT(failureOf({.arguments = {"recognize", "-"}, .input = "no picture, from a pipe"}),
                HasSubstr("不是图片"));
}

TEST_F(RecognizeProgram, ReadsTheOthersAroundABrokenOne) {
    const std::string bytes = picture("Quarterly report");
    const auto outcome =
        runProgram(home_, {.arguments = {"recognize", file("a.png", bytes), file("b.png", ""), "-"}, .input = bytes});
    EXPECT_EQ(outcome.output, "Quarterly report\n\nQuarterly report\n");
    EXPECT_THAT(outcome.error, HasSubstr("b.png: "));
    EXPECT_EQ(outcome.status, 1);
}

TEST_F(RecognizeProgram, WithoutLanguagePacksOnlyTheirScriptsAreLost) {
    const auto outcome = runProgram(home_, {.arguments = {"recognize", file("a.png", picture("Quarterly report"))},
                                            .environment = {"TESSDATA_PREFIX=" + pictures_.path().string()}});
    EXPECT_EQ(outcome.output, "Quarterly report\n");
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.status, 0);
}

// The runtime would keep a record of its use in the cache folder.
TEST_F(RecognizeProgram, NothingIsRecordedForItsMakers) {
    const auto outcome = runProgram(home_, {.arguments = {"recognize", file("a.png", picture("Quarterly report"))},
                                            .environment = {"ORT_DISABLE_TELEMETRY=0"}});
    EXPECT_EQ(outcome.output, "Quarterly report\n");
    EXPECT_TRUE(home_.files().empty());
}

TEST_F(RecognizeProgram, MissingAndDamagedModelsAreNamed) {
    const TemporaryDirectory installation;
    const fs::path program = installation.path() / "ovrin";
    const fs::path models = installation.path() / "share/ovrin/models";
    const fs::path original = OVRIN_BINARY_DIR "/share/ovrin/models";
    fs::create_directories(models);
    fs::copy_file(OVRIN_BINARY_DIR "/ovrin", program);
    const RunningProgram::Setup setup{.arguments = {"recognize", file("a.png", picture("Quarterly report"))},
                                      .program = program};
    for (const std::string name : {"PP-OCRv6_det", "PP-OCRv6_rec"}) {
        std::vector<fs::path> ofThisName;
        for (const auto& entry : fs::directory_iterator(original)) {
            const fs::path model = models / entry.path().filename();
            fs::copy_file(entry, model, fs::copy_options::overwrite_existing);
            if (model.filename().string().starts_with(name)) ofThisName.push_back(model);
        }
        for (const auto& model : ofThisName) fs::resize_file(model, fs::file_size(model) / 8);
        EXPECT_THAT(failureOf(setup), HasSubstr(name));
        for (const auto& model : ofThisName) fs::remove(model);
        EXPECT_THAT(failureOf(setup), testing::AllOf(HasSubstr(name), HasSubstr("缺少文字识别模型文件")));
    }
}

}  // namespace
}  // namespace ovrin
