// The recogniser against real pictures. The corpora lie beside the project; without them these tests are skipped.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "base/error.h"
#include "platform/linux/recognition/linux_image_decoder.h"
#include "platform/linux/recognition/onnx_text_recognizer.h"

namespace ovrin {
namespace {

namespace fs = std::filesystem;

const RecognitionFiles& recognitionFiles() {
    static const RecognitionFiles files{.modelFolder = OVRIN_BINARY_DIR "/share/ovrin/models",
                                        .tesseractFolder = RecognitionFiles::ofThisProgram().tesseractFolder};
    return files;
}

OnnxTextRecognizer& sharedRecognizer() {
    // Never destroyed: Tesseract's own statics, which came later, go first.
    static OnnxTextRecognizer& recognizer = *new OnnxTextRecognizer(recognitionFiles());
    return recognizer;
}

TextRecognitionRequest allLanguages() {
    return {.usesLanguageCorrection = true,
            .automaticallyDetectsLanguage = true,
            .recognitionLanguages = {"zh-Hans", "zh-Hant", "en-US", "ja-JP", "ko-KR"}};
}

Image pictureOf(const fs::path& file) {
    std::ifstream input(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(input), {}};
    return LinuxImageDecoder().decode(std::as_bytes(std::span(bytes)));
}

Image plainPicture(int width, int height, std::uint8_t level) {
    return {width, height,
            std::vector<std::uint8_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4, level)};
}

std::string textOf(const std::vector<TextObservation>& observations) {
    std::string text;
    for (const auto& observation : observations) text += observation.candidates.front().string + "\n";
    return text;
}

// What is compared: without white space, and with characters of the same meaning made equal.
icu::UnicodeString squeezed(const std::string& text) {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString plain = icu::UnicodeString::fromUTF8(text);
    const std::map<char16_t, char16_t> same = {{u'“', u'"'}, {u'”', u'"'}, {u'‘', u'\''}, {u'’', u'\''}, {u'—', u'-'},
                                               {u'–', u'-'}, {u'−', u'-'}, {u'·', u'.'},  {u'×', u'x'}};
    for (int i = 0; i < plain.length(); ++i) {
        if (const auto found = same.find(plain[i]); found != same.end()) plain.setCharAt(i, found->second);
    }
    plain = icu::Normalizer2::getNFKCInstance(status)->normalize(plain, status);
    icu::UnicodeString result;
    for (int i = 0; i < plain.length(); ++i) {
        if (!u_isUWhiteSpace(plain[i])) result.append(plain[i]);
    }
    return result;
}

double errorRate(const std::string& expectedText, const std::string& readText) {
    const auto expected = squeezed(expectedText);
    const auto read = squeezed(readText);
    std::vector<int> row(static_cast<std::size_t>(read.length()) + 1);
    for (std::size_t j = 0; j < row.size(); ++j) row[j] = static_cast<int>(j);
    for (int i = 1; i <= expected.length(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j < row.size(); ++j) {
            const int above = row[j];
            const int different = expected[i - 1] == read[static_cast<int>(j) - 1] ? 0 : 1;
            row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + different});
            diagonal = above;
        }
    }
    return row.back() / static_cast<double>(std::max(1, expected.length()));
}

struct CorpusItem {
    fs::path picture;
    std::string language;
    std::vector<std::string> lines;
    std::vector<std::vector<double>> boxes;  // left, top, right, bottom in pixels
};

std::vector<CorpusItem> corpus(const std::string& name) {
    const fs::path folder = fs::path(OVRIN_SOURCE_DIR) / ".." / "shared" / name;
    std::ifstream input(folder / "truth.json");
    if (!input) return {};
    std::vector<CorpusItem> items;
    for (const auto& item : nlohmann::json::parse(input)) {
        items.push_back({folder / item.at("image").get<std::string>(), item.at("lang"), item.at("lines"),
                         item.value("boxes", std::vector<std::vector<double>>{})});
    }
    return items;
}

std::string joinedLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) text += line + "\n";
    return text;
}

class CorpusTest : public testing::Test {
protected:
    void SetUp() override {
        if (corpus("ocr-dev").empty()) GTEST_SKIP() << "the pictures of shared/ocr-dev are not beside the project";
    }
};

TEST_F(CorpusTest, ReadsEveryLanguageWithinItsLimit) {
    std::map<std::string, std::vector<double>> rates;
    for (const auto& item : corpus("ocr-dev")) {
        const auto observations = sharedRecognizer().perform(allLanguages(), pictureOf(item.picture), {});
        rates[item.language].push_back(errorRate(joinedLines(item.lines), textOf(observations)));
        for (const auto& observation : observations) {
            EXPECT_GT(observation.candidates.front().confidence, 0) << item.picture;
            EXPECT_LE(observation.candidates.front().confidence, 1) << item.picture;
        }
    }
    const std::map<std::string, double> limits = {{"zh-Hans", 0.005}, {"mixed", 0.005}, {"en", 0.012},
                                                  {"zh-Hant", 0.005}, {"ja", 0.015},    {"ko", 0.01}};
    for (const auto& [language, limit] : limits) {
        const auto& all = rates.at(language);
        double mean = 0;
        for (const double rate : all) mean += rate / static_cast<double>(all.size());
        EXPECT_LE(mean, limit) << language;
    }
}

TEST_F(CorpusTest, KeepsSpacesCapitalsAndWideMarks) {
    const auto read = [](const std::string& name) {
        const auto folder = fs::path(OVRIN_SOURCE_DIR) / ".." / "shared" / "ocr-dev";
        return textOf(sharedRecognizer().perform(allLanguages(), pictureOf(folder / name), {}));
    };
    EXPECT_NE(read("en-article.png").find("so nothing of it can show up in the recognised text.\n"), std::string::npos);
    EXPECT_NE(read("mixed-docs.png").find("HTTP 429（Too Many Requests）时请稍后重试。"), std::string::npos);
    EXPECT_NE(read("en-terminal.png").find(" 1 ann users 913 Jan 7 08:15 app.conf"), std::string::npos);
    EXPECT_NE(read("ko-ui-dark.png").find("모든 기록 지우기\n"), std::string::npos);
}

TEST_F(CorpusTest, BoxesLieOnTheirLinesInUnitCoordinatesFromTheLowerLeft) {
    int found = 0;
    int expected = 0;
    for (const auto& item : corpus("ocr-dev-more")) {
        if (item.language != "en" && item.language != "zh") continue;
        const Image picture = pictureOf(item.picture);
        const auto observations = sharedRecognizer().perform(allLanguages(), picture, {});
        for (const auto& line : item.boxes) {
            ++expected;
            const double middle = (line[1] + line[3]) / 2;
            found += std::any_of(observations.begin(), observations.end(), [&](const TextObservation& observation) {
                const UnitRect& box = observation.boundingBox;
                const double top = (1 - box.y - box.height) * picture.height();
                const double bottom = (1 - box.y) * picture.height();
                const double left = box.x * picture.width();
                const double right = (box.x + box.width) * picture.width();
                return top > line[1] - 4 && bottom < line[3] + 4 && top < middle && bottom > middle &&
                       std::abs(left - line[0]) < 25 && std::abs(right - line[2]) < 25;
            });
        }
    }
    EXPECT_GE(found, expected * 85 / 100) << "of " << expected;
}

TEST_F(CorpusTest, OnlyRequestedScriptsAreTriedAndAMissingLanguageOnlyLosesItsScript) {
    const auto korean = corpus("ocr-dev");
    const auto item =
        std::find_if(korean.begin(), korean.end(), [](const CorpusItem& one) { return one.language == "ko"; });
    const Image picture = pictureOf(item->picture);
    auto chineseOnly = allLanguages();
    chineseOnly.recognitionLanguages = {"zh-Hans", "en-US"};
    const auto hasHangul = [](const std::string& text) {
        const auto unicode = icu::UnicodeString::fromUTF8(text);
        for (int i = 0; i < unicode.length(); ++i) {
            if (unicode[i] >= 0xac00 && unicode[i] <= 0xd7a3) return true;
        }
        return false;
    };
    EXPECT_FALSE(hasHangul(textOf(sharedRecognizer().perform(chineseOnly, picture, {}))));

    RecognitionFiles files = recognitionFiles();
    files.tesseractFolder = "/nonexistent";
    OnnxTextRecognizer withoutTesseract(files);
    EXPECT_FALSE(hasHangul(textOf(withoutTesseract.perform(allLanguages(), picture, {}))));
    const auto chinese = pictureOf(korean.front().picture);
    EXPECT_LT(
        errorRate(joinedLines(korean.front().lines), textOf(withoutTesseract.perform(allLanguages(), chinese, {}))),
        0.02);
}

TEST_F(CorpusTest, SeveralThreadsReadAtOnceWhileResourcesAreReleased) {
    const auto items = corpus("ocr-dev");
    const Image picture = pictureOf(items.front().picture);
    std::vector<std::string> texts(3);
    {
        std::vector<std::jthread> threads;
        threads.reserve(texts.size() + 1);
        for (auto& text : texts) {
            threads.emplace_back([&] { text = textOf(sharedRecognizer().perform(allLanguages(), picture, {})); });
        }
        threads.emplace_back([] { sharedRecognizer().releaseResources(); });
    }
    for (const auto& text : texts) EXPECT_LT(errorRate(joinedLines(items.front().lines), text), 0.02);
}

TEST(TextRecognizerTest, PicturesWithoutTextGiveNoLines) {
    EXPECT_TRUE(sharedRecognizer().perform(allLanguages(), {}, {}).empty());
    EXPECT_TRUE(sharedRecognizer().perform(allLanguages(), plainPicture(1, 1, 200), {}).empty());
    EXPECT_TRUE(sharedRecognizer().perform(allLanguages(), plainPicture(640, 360, 30), {}).empty());
    EXPECT_TRUE(sharedRecognizer().perform(allLanguages(), plainPicture(3000, 3, 255), {}).empty());
    EXPECT_TRUE(sharedRecognizer().perform(allLanguages(), plainPicture(2, 2000, 255), {}).empty());

    std::mt19937 random(7);
    std::vector<std::uint8_t> noise(static_cast<std::size_t>(400) * 200 * 4);
    for (auto& level : noise) level = static_cast<std::uint8_t>(random() % 256);
    EXPECT_TRUE(sharedRecognizer().perform(allLanguages(), Image(400, 200, noise), {}).empty());

    std::vector<std::uint8_t> gradient;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 400; ++x) {
            for (const int level : {x / 2, y, 255 - x / 2, 255}) gradient.push_back(static_cast<std::uint8_t>(level));
        }
    }
    EXPECT_TRUE(sharedRecognizer().perform(allLanguages(), Image(400, 200, gradient), {}).empty());
}

TEST(TextRecognizerTest, AStopRequestEndsThePass) {
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(sharedRecognizer().perform(allLanguages(), plainPicture(64, 64, 255), source.get_token()),
                 CancellationError);
}

class DamagedModelTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::temp_directory_path() / ("ovrin-models-" + std::to_string(std::random_device{}()));
        fs::create_directories(folder_);
        for (const auto& entry : fs::directory_iterator(recognitionFiles().modelFolder)) {
            fs::create_symlink(entry.path(), folder_ / entry.path().filename());
        }
    }
    void TearDown() override { fs::remove_all(folder_); }

    void replace(const std::string& name, const std::string& content) {
        fs::remove(folder_ / name);
        std::ofstream(folder_ / name, std::ios::binary) << content;
    }

    std::string failure() {
        OnnxTextRecognizer recognizer({.modelFolder = folder_, .tesseractFolder = ""});
        recognizer.prepare();  // stays silent
        try {
            recognizer.perform(allLanguages(), plainPicture(64, 64, 255), {});
        } catch (const Error& error) {
            return error.errorDescription();
        }
        return "";
    }

    fs::path folder_;
};

TEST_F(DamagedModelTest, NamesTheFileAndTheCauseInOneLine) {
    for (const std::string& name :
         {std::string("PP-OCRv6_det_tiny.onnx"), RecognitionFiles::recognitionModelOfThisProcessor()}) {
        const fs::path original = fs::read_symlink(folder_ / name);
        fs::remove(folder_ / name);
        EXPECT_NE(failure().find(name), std::string::npos) << name;
        EXPECT_NE(failure().find("缺少文字识别模型文件"), std::string::npos) << name;
        for (const std::string content : {"no model at all\n", ""}) {
            replace(name, content);
            const std::string damaged = failure();
            EXPECT_NE(damaged.find(name), std::string::npos) << name << ": " << damaged;
            EXPECT_EQ(damaged.find('\n'), std::string::npos) << damaged;
            fs::remove(folder_ / name);
        }
        fs::create_symlink(original, folder_ / name);
    }
    EXPECT_EQ(failure(), "");
}

}  // namespace
}  // namespace ovrin
