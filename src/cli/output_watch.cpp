#include "cli/output_watch.h"

#include <utility>

namespace ovrin::cli {

OutputWatch::OutputWatch(int output, std::stop_token stop)
    : onOuterStop_(std::move(stop), [this] { stop_.request_stop(); }),
      wait_(stop_.get_token()),
      watcher_([this, output] {
          if (!wait_.untilClosed(output)) return;
          readerHasGone_ = true;
          stop_.request_stop();
      }) {}

OutputWatch::~OutputWatch() {
    stop_.request_stop();
    watcher_.join();
}

}  // namespace ovrin::cli
