// What the building stones of asynchronous work cost: awaiting, posting, and a stream element between threads.
#include <semaphore>
#include <thread>
#include <utility>

#include <benchmark/benchmark.h>

#include "base/async_stream.h"
#include "base/run_loop.h"
#include "base/task.h"
#include "base/virtual_loop.h"

namespace ovrin {
namespace {

Task<int> valueNow(int value) {
    co_return value;
}

Task<long> awaitMany(long count) {
    long sum = 0;
    for (long i = 0; i < count; ++i) sum += co_await valueNow(1);
    co_return sum;
}

void awaitInlineTask(benchmark::State& state) {
    RunLoop loop;
    constexpr long tasks = 1000;
    for (auto _ : state) benchmark::DoNotOptimize(loop.complete(awaitMany(tasks)));
    state.SetItemsProcessed(state.iterations() * tasks);
}
BENCHMARK(awaitInlineTask);

void postAndRun(benchmark::State& state) {
    VirtualLoop loop;
    const long works = state.range(0);
    long runs = 0;
    for (auto _ : state) {
        for (long i = 0; i < works; ++i) loop.post([&runs] { ++runs; });
        loop.runPosted();
    }
    benchmark::DoNotOptimize(runs);
    state.SetItemsProcessed(state.iterations() * works);
}
BENCHMARK(postAndRun)->Arg(1)->Arg(1000);

// A wait on the loop and the wake that ends it, from the same thread.
void suspendAndResume(benchmark::State& state) {
    RunLoop loop;
    constexpr long waits = 1000;
    const auto work = [](long count) -> Task<void> {
        for (long i = 0; i < count; ++i) co_await sleepFor(EventLoop::Duration::zero());
    };
    for (auto _ : state) loop.complete(work(waits));
    state.SetItemsProcessed(state.iterations() * waits);
}
BENCHMARK(suspendAndResume);

// Elements pushed by another thread in bursts; the reader asks for the next burst when it has read one.
void streamAcrossThreads(benchmark::State& state) {
    RunLoop loop;
    const long burst = state.range(0);
    auto made = makeStream<long>();
    std::counting_semaphore<> wanted(0);
    std::thread producer([&wanted, burst, writer = std::move(made.second)]() mutable {
        while (!writer.stopToken().stop_requested()) {
            wanted.acquire();
            for (long i = 0; i < burst; ++i) writer.push(i);
        }
    });
    {
        AsyncStream<long> stream = std::move(made.first);
        const auto readBurst = [](AsyncStream<long>& source, long count) -> Task<void> {
            for (long i = 0; i < count; ++i) {
                const auto value = co_await source.next();
                benchmark::DoNotOptimize(value);
            }
        };
        for (auto _ : state) {
            wanted.release();
            loop.complete(readBurst(stream, burst));
        }
    }
    wanted.release();
    producer.join();
    state.SetItemsProcessed(state.iterations() * burst);
}
BENCHMARK(streamAcrossThreads)->Arg(1)->Arg(64)->Arg(4096)->UseRealTime();

}  // namespace
}  // namespace ovrin
