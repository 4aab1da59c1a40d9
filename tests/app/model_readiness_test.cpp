#include "app/model_readiness.h"

#include <atomic>
#include <future>
#include <semaphore>

#include <gtest/gtest.h>

#include "base/worker_executor.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;

class ModelReadinessTest : public testing::Test {
public:
    ~ModelReadinessTest() override { keychain.release(); }  // for a question that is still open

protected:
    void waitForWorker() {
        std::promise<void> done;
        worker.post([&done](const std::stop_token&) { done.set_value(); });
        done.get_future().wait();
    }

    std::atomic<bool> isConfigured = false;
    std::atomic<bool> isKeychainSlow = false;
    std::counting_semaphore<> keychain{0};
    std::counting_semaphore<> waitsForKeychain{0};
    WorkerExecutor worker{1};
    const std::function<bool()> question = [this] {
        const bool answer = isConfigured;
        if (isKeychainSlow) {
            waitsForKeychain.release();
            keychain.acquire();
        }
        return answer;
    };
    ModelReadiness patient{question, worker, 1min};
    ModelReadiness impatient{question, worker, 0ms};
};

TEST_F(ModelReadinessTest, EveryOpeningSeesHowThingsAreThen) {
    EXPECT_FALSE(patient.isReady());
    isConfigured = true;
    EXPECT_TRUE(patient.isReady());
    isConfigured = false;
    EXPECT_FALSE(patient.isReady());
}

TEST_F(ModelReadinessTest, WhatWasFoundAheadCountsWhereTheKeychainIsSlow) {
    impatient.isReady();
    waitForWorker();
    isKeychainSlow = true;
    EXPECT_FALSE(impatient.isReady());
}

TEST_F(ModelReadinessTest, AnAnswerToAnOlderQuestionIsNotTakenForTheNewest) {
    isConfigured = true;
    isKeychainSlow = true;
    impatient.isReady();
    waitsForKeychain.acquire();
    isKeychainSlow = false;
    isConfigured = false;
    impatient.isReady();  // while the first question is open
    keychain.release();
    waitForWorker();
    EXPECT_FALSE(impatient.isReady());
}

}  // namespace
}  // namespace ovrin
