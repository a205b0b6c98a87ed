#pragma once
// Re-posting to the main queue. Completions that arrive on other threads
// (translations, flight answers, decoded pictures) hand their view work to
// the main queue; by the time it runs, the view it was meant for may be gone.
//
//   translate(text, [weakCell](const std::string& translated) {
//       postToMain(weakCell, [translated](UITblCell& cell) { cell.addHeader(translated); });
//   });

#include <morvane/sys/Queue.h>

#include <memory>
#include <utility>

namespace morvane {

// Runs work(target) on the main queue, later, if the target is still alive
// then. Safe to call from any thread.
template <class Target, class Work> void postToMain(std::weak_ptr<Target> target, Work work) {
    sys::Queue::main().async([target = std::move(target), work = std::move(work)]() mutable {
        if (auto alive = target.lock()) work(*alive);
    });
}

} // namespace morvane
