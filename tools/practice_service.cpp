// The practice service as a program: tools/build release ovrin_practice_service, then
// build/release/ovrin_practice_service [MILLISECONDS BETWEEN PIECES]. It runs until it is interrupted.
#include "practice/practice_service.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

void printUse(const std::string& url) {
    std::cout << "Ovrin's practice service, with no model behind it, listens at\n\n    " << url
              << "\n\nAn Ovrin that asks it, in either protocol:\n\n"
              << "    OVRIN_BASE_URL=" << url << " OVRIN_API_KEY=practice ovrin translate --to zh-Hans '"
              << "A ticket to the small island costs three coins.'\n"
              << "    OVRIN_API_STANDARD=anthropic ...\n"
              << std::endl;
}

}  // namespace

int main(int argc, char** argv) {
    // Waited for below instead of ending the process at once; before any thread is started, which inherits it.
    sigset_t ends;
    sigemptyset(&ends);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ends, number);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);

    auto pace = ovrin::PracticeService::readablePace;
    if (argc > 1) {
        char* end = nullptr;
        pace = std::chrono::milliseconds(std::strtol(argv[1], &end, 10));
        if (argc > 2 || *end != '\0' || end == argv[1] || pace.count() < 0) {
            std::cerr << "ovrin_practice_service [MILLISECONDS BETWEEN PIECES]\n";
            return 2;
        }
    }
    const ovrin::PracticeService service(pace);
    printUse(service.baseURL());
    int number = 0;
    sigwait(&ends, &number);
    return EXIT_SUCCESS;
}
