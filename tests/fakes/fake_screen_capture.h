// A desktop of displays that the test lists, and pictures that it delivers.
#pragma once

#include <string>
#include <vector>

#include "fakes/deferred.h"
#include "fakes/journal.h"
#include "platform/screen_capture.h"

namespace ovrin {

class FakeScreenCapture final : public ScreenCapture {
public:
    explicit FakeScreenCapture(Journal& journal) : journal_(journal) {}

    bool isPermitted = true;
    Deferred<bool> answerToRequest;
    std::vector<CapturableDisplay> listed{{.id = DisplayId{1}, .frame = {0, 0, 1920, 1080}, .scaleFactor = 1}};
    ScreenshotRequest lastRequest;
    Deferred<Image> picture;

    bool preflightAccess() override { return isPermitted; }
    Task<bool> requestAccess() override {
        journal_.add("access requested");
        return answerToRequest.result();
    }
    Task<std::vector<CapturableDisplay>> displays() override { co_return listed; }
    void prepare(const ScreenshotRequest& /*request*/) override { journal_.add("screen prepares"); }
    Task<Image> screenshot(ScreenshotRequest request) override {
        journal_.add("screenshot");
        lastRequest = request;
        return picture.result();
    }

private:
    Journal& journal_;
};

}  // namespace ovrin
