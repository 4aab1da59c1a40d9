// Streamed text in a scroll area, as a window shows a model's answer: how long the main loop stands still while pieces
// pour in, and what a frame costs while a long answer is scrolled or its window resized.
#include <QApplication>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>
#include <time.h>

#include "views/components/ov_scroll_area.h"
#include "views/components/ov_streaming_text.h"
#include "views/components/ov_window_background.h"

namespace ovrin {
namespace {

using Clock = std::chrono::steady_clock;
using Progress = OVStreamingText::Progress;

constexpr std::size_t answerCharacters = 20'000;

// Characters (not bytes) of an answer with everything that models write.
std::u16string answerText() {
    const std::u16string passage =
        u"## 第一部分\n\n这是一段**重要**的说明，其中有 `code`、“引号”和英文 words；参见"
        u"[文档](https://example.com/a)。他接着写道：渲染必须平滑，滚动也不能卡顿，哪怕答案很长。\n\n"
        u"- 列表的第一项，带有一些文字来换行，让这一行超过面板的宽度\n- 第二项\n\n"
        u"```python\nfor item in items:\n    print(item)  # 注释\n```\n\n";
    std::u16string text;
    while (text.size() < answerCharacters) text += passage;
    text.resize(answerCharacters);
    return text;
}

// One paragraph without a line break, the hardest to append to.
std::u16string longParagraph() {
    const std::u16string sentence = u"没有换行的长段落会一直增长，mixing Latin words，直到它有两万个字符为止。";
    std::u16string text;
    while (text.size() < answerCharacters) text += sentence;
    text.resize(answerCharacters);
    return text;
}

std::string toUtf8(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size())).toStdString();
}

struct Window {
    explicit Window(OVStreamingText::Mode mode) {
        background.resize(460, 460);
        auto* outer = new QVBoxLayout(&background);
        outer->setContentsMargins(0, 0, 0, 0);
        area = new OVScrollArea(environment);
        outer->addWidget(area);
        auto* content = new QWidget;
        auto* inner = new QVBoxLayout(content);
        text = new OVStreamingText(environment, mode);
        inner->addWidget(text);
        inner->addStretch();
        area->setContent(content);
        background.show();
        QApplication::processEvents();
    }

    void fill(const std::u16string& words) {
        text->setTextSoFar(toUtf8(words), Progress::finished);
        text->showPending();
        // Sizes travel up and down again through the event loop.
        while (area->verticalScrollBar()->maximum() == 0) QApplication::processEvents();
    }

    ViewEnvironment environment;
    OVWindowBackground background{environment, 0};
    OVScrollArea* area = nullptr;
    OVStreamingText* text = nullptr;
};

double milliseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

// What the main thread has computed so far, in milliseconds: unlike the clock it does not count what other programs of
// a busy machine took meanwhile.
double computedMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// 2000 pieces in one second; the time that matters is the longest between two turns of the event loop. The busy share
// leaves out the turns that found nothing to do.
void append(benchmark::State& state, const std::u16string& whole, OVStreamingText::Mode mode) {
    constexpr std::size_t pieces = 2000;
    constexpr auto duration = std::chrono::seconds(1);
    double longest = 0;
    double longestComputed = 0;
    double busy = 0;
    for (auto iteration : state) {
        Window window(mode);
        window.area->followBottom();
        std::vector<std::string> prefixes;
        for (std::size_t i = 1; i <= pieces; ++i) {
            prefixes.push_back(toUtf8(std::u16string_view(whole).substr(0, whole.size() * i / pieces)));
        }
        const auto start = Clock::now();
        auto lastTurn = start;
        double computed = computedMilliseconds();
        std::size_t next = 0;
        while (next < pieces) {
            const auto due = static_cast<std::size_t>((Clock::now() - start) * pieces / duration);
            for (; next < std::min(due, pieces); ++next) {
                window.text->setTextSoFar(prefixes[next], next + 1 < pieces ? Progress::streaming : Progress::finished);
            }
            QApplication::processEvents();
            const auto turn = Clock::now();
            const double computedNow = computedMilliseconds();
            longest = std::max(longest, milliseconds(turn - lastTurn));
            longestComputed = std::max(longestComputed, computedNow - computed);
            if (computedNow - computed > 0.1) busy += computedNow - computed;
            lastTurn = turn;
            computed = computedNow;
        }
    }
    state.counters["longest_stall_ms"] = longest;
    state.counters["longest_computed_ms"] = longestComputed;
    state.counters["busy_ms_per_second"] = busy / static_cast<double>(state.iterations());
}

void appendAnswer(benchmark::State& state) {
    append(state, answerText(), OVStreamingText::Mode::markdown);
}
BENCHMARK(appendAnswer)->Iterations(3)->Unit(benchmark::kMillisecond);

void appendParagraph(benchmark::State& state) {
    append(state, longParagraph(), OVStreamingText::Mode::plain);
}
BENCHMARK(appendParagraph)->Iterations(3)->Unit(benchmark::kMillisecond);

// One frame of scrolling; with everything in sight painted anew, which a fast scroll comes to.
void scroll(benchmark::State& state) {
    Window window(OVStreamingText::Mode::markdown);
    window.fill(answerText());
    QScrollBar* const bar = window.area->verticalScrollBar();
    double longest = 0;
    for (auto iteration : state) {
        const auto start = Clock::now();
        bar->setValue(bar->value() + 37 > bar->maximum() ? 0 : bar->value() + 37);
        window.area->viewport()->repaint();
        longest = std::max(longest, milliseconds(Clock::now() - start));
    }
    state.counters["longest_frame_ms"] = longest;
}
BENCHMARK(scroll)->Iterations(2000)->Unit(benchmark::kMillisecond);

void resize(benchmark::State& state) {
    Window window(OVStreamingText::Mode::markdown);
    window.fill(answerText());
    int width = 460;
    for (auto iteration : state) {
        width = width == 460 ? 520 : 460;
        window.background.resize(width, 460);
        QApplication::processEvents();
    }
}
BENCHMARK(resize)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ovrin

int main(int count, char** arguments) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
