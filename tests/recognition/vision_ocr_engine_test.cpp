#include "recognition/vision_ocr_engine.h"

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>
#include <thread>

#include <gtest/gtest.h>

#include "base/run_loop.h"
#include "base/virtual_loop.h"
#include "base/worker_executor.h"
#include "fakes/fake_language_identifier.h"
#include "fakes/fake_text_recognizer.h"
#include "recognition/ocr_engine_error.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

using Strings = std::vector<std::string>;

TextObservation line(std::string text, float confidence = 0.5F, UnitRect box = {}) {
    return {.candidates = {{.string = std::move(text), .confidence = confidence}, {.string = "worse"}},
            .boundingBox = box};
}

class VisionOCREngineTest : public testing::Test {
protected:
    OCRResult recognize() { return loop_.complete(engine_->recognize(Image(1, 1, {0, 0, 0, 255}))); }

    void reads(std::vector<TextObservation> lines) {
        recognizer_.reading = [lines = std::move(lines)](const auto&) { return lines; };
    }

    RunLoop loop_;
    VirtualLoop virtualLoop_;  // outlives the workers, which report to it when nobody listens any more
    FakeTextRecognizer recognizer_;
    FakeLanguageIdentifier identifier_;
    Timestamp now_{1'234'567'891ns};
    WorkerExecutor workers_{1};
    std::unique_ptr<VisionOCREngine> engine_ = std::make_unique<VisionOCREngine>(
        Strings{"zh-Hans", "en-US"}, recognizer_, identifier_, workers_, [this] { return now_; });
};

TEST_F(VisionOCREngineTest, KeepsTheBestReadingOfEveryLineInOrderAsItIs) {
    const UnitRect box{0.1, 0.7, 0.5, 0.05};
    reads({line(" 你好 ", 0.25F, box), TextObservation{}, line("world", 0.0F)});
    identifier_.answer = "zh-Hans";

    const OCRResult result = recognize();

    EXPECT_EQ(result.paragraphs,
              (std::vector<OCRParagraph>{{.text = " 你好 ", .confidence = 0.25F, .normalizedBoundingBox = box},
                                         {.text = "world", .confidence = 0.0F, .normalizedBoundingBox = {}}}));
    EXPECT_EQ(result.detectedLanguage, "zh-Hans");
    EXPECT_EQ(identifier_.lastText, "你好 \nworld");
    EXPECT_EQ(result.createdAt, Timestamp(1'234'567us));
}

TEST_F(VisionOCREngineTest, AsksForOneAccurateCorrectedPassOverItsLanguages) {
    reads({line("text")});
    recognize();
    const auto request = recognizer_.lastRequest();
    EXPECT_EQ(recognizer_.calls(), Strings{"perform"});
    EXPECT_EQ(request.recognitionLevel, RecognitionLevel::accurate);
    EXPECT_TRUE(request.usesLanguageCorrection);
    EXPECT_TRUE(request.automaticallyDetectsLanguage);
    EXPECT_EQ(request.recognitionLanguages, (Strings{"zh-Hans", "en-US"}));
}

TEST_F(VisionOCREngineTest, AsksForTheLanguageOfTwoPerceivedCharactersOrMore) {
    identifier_.answer = "en";
    for (const char* single : {" a\n", "e\u0301", "👨‍👩‍👧"}) {
        reads({line(single)});
        EXPECT_EQ(recognize().detectedLanguage, std::nullopt) << single;
    }
    EXPECT_EQ(identifier_.lastText, std::nullopt);
    reads({line("ab")});
    EXPECT_EQ(recognize().detectedLanguage, "en");
}

TEST_F(VisionOCREngineTest, APictureWithoutReadableTextIsAnError) {
    for (const auto& lines : {std::vector<TextObservation>{}, {TextObservation{}, TextObservation{}}}) {
        reads(lines);
        try {
            recognize();
            FAIL() << "expected an error";
        } catch (const OCREngineError& error) {
            EXPECT_EQ(error.errorCase(), OCREngineError::Case::noTextFound);
            EXPECT_EQ(error.errorDescription(), "没有在所选区域中识别到文字。");
        }
    }
}

TEST_F(VisionOCREngineTest, APlatformFailureKeepsItsReason) {
    recognizer_.reading = [](const auto&) -> std::vector<TextObservation> { throw Error("model missing"); };
    try {
        recognize();
        FAIL() << "expected an error";
    } catch (const OCREngineError& error) {
        EXPECT_EQ(error.errorCase(), OCREngineError::Case::recognitionFailed);
        EXPECT_EQ(error.errorDescription(), "文字识别失败：model missing");
    }
}

TEST_F(VisionOCREngineTest, AStopReachesTheRunningPassAndIsNoRecognitionFailure) {
    std::stop_source stop;
    recognizer_.reading = [&stop](const std::stop_token& passStop) -> std::vector<TextObservation> {
        stop.request_stop();
        while (!passStop.stop_requested()) std::this_thread::yield();
        throw CancellationError();
    };
    EXPECT_THROW(loop_.complete(engine_->recognize(Image()), stop.get_token()), CancellationError);
}

TEST_F(VisionOCREngineTest, ARunMayOutliveTheEngineThatNobodyWaitsForAnyMore) {
    std::stop_source begun;
    recognizer_.reading = [&begun](const std::stop_token& passStop) {
        begun.request_stop();
        while (!passStop.stop_requested()) std::this_thread::yield();
        return std::vector{line("late")};
    };
    const auto recognizeQuietly = [](OCREngine& engine) -> Task<void> { co_await engine.recognize(Image()); };
    std::optional<RunningTask> running(std::in_place, virtualLoop_, recognizeQuietly(*engine_));
    running->start();
    while (!begun.stop_requested()) std::this_thread::yield();
    running.reset();
    engine_.reset();
    virtualLoop_.runPosted();
}

TEST_F(VisionOCREngineTest, PreparesInTheBackground) {
    recognizer_.onCall = [this] {
        EXPECT_FALSE(loop_.isCurrent());
        loop_.quit();
    };
    engine_->prepare();
    loop_.run();
    EXPECT_EQ(recognizer_.calls(), Strings{"prepare"});
}

}  // namespace
}  // namespace ovrin
