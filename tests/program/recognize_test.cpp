// ovrin recognize on pictures that are none, and with parts of its installation missing.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

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
    const auto expectFailure = [&](const std::string& name, const std::string& bytes, const std::string& cause) {
        const std::string path = file(name, bytes);
        EXPECT_THAT(failureOf(path), testing::AllOf(StartsWith(path + ": "), HasSubstr(cause)));
    };
    expectFailure("notes.txt", "this is no picture at all", "不是图片");
    expectFailure("empty.png", "", "是空的");
    EXPECT_THAT(failureOf(pictures_.path() / "none.png"), HasSubstr("none.png: No such file"));
    EXPECT_THAT(failureOf(pictures_.path().string()), HasSubstr("Is a directory"));
    EXPECT_THAT(failureOf({.arguments = {"recognize", "-"}, .input = "no picture, from a pipe"}),
                HasSubstr("不是图片"));
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

}  // namespace
}  // namespace ovrin
