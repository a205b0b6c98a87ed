#include <morvane/media/ZBImageCut.h>
#include <morvane/media/detail/CachePaths.h>
#include <morvane/media/detail/CacheSweep.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Files.h>
#include <morvane/sys/Queue.h>

#include <cmath>
#include <mutex>

namespace morvane::detail {

namespace {

struct Schedule {
    std::mutex mutex;
    std::filesystem::path documents; // the folder last swept
    double last = 0;                 // when its sweep started, on the kit's clock
    bool swept = false;
    bool running = false;
    CacheSweep::Stats stats;
};

Schedule& schedule() {
    static Schedule* instance = new Schedule; // sweeps may still run at exit
    return *instance;
}

} // namespace

void CacheSweep::request() {
    const std::filesystem::path documents = sys::App::documentsFolder();
    const double now = sys::Clock::now();
    auto& state = schedule();
    {
        std::lock_guard lock(state.mutex);
        if (state.running) return;
        // A clock that went back (a test switching clocks) counts as due.
        const bool due =
            !state.swept || state.documents != documents || now - state.last >= kInterval || now < state.last;
        if (!due) return;
        state.documents = documents;
        state.last = now;
        state.swept = true;
        state.running = true;
    }
    sys::Queue::global(sys::Priority::Background).async([documents] {
        struct Done {
            ~Done() {
                auto& state = schedule();
                std::lock_guard lock(state.mutex);
                state.running = false;
            }
        } done;
        for (std::string_view folder : {kImageFolder, kOlderLoaderFolder}) {
            const std::filesystem::path root = documents / folder;
            if (sys::Files::isFolder(root)) ZBImageCut::traverseDirectoryAtPath(root.string());
        }
    });
}

CacheSweep::Stats CacheSweep::stats() {
    auto& state = schedule();
    std::lock_guard lock(state.mutex);
    return state.stats;
}

void CacheSweep::recordWalk(double mainThreadSeconds) {
    auto& state = schedule();
    std::lock_guard lock(state.mutex);
    ++state.stats.walks;
    state.stats.mainThreadSeconds += mainThreadSeconds;
}

} // namespace morvane::detail
