#include "Tour.h"

#include "Gallery.h"
#include "VenueScreen.h"

#include <morvane/lists/UITbl.h>
#include <morvane/lists/UITblCell.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <thread>

namespace gallery {

using namespace morvane;

namespace {

// Real time per turn of the waiting loop, and clock time advanced per turn.
constexpr auto kTurn = std::chrono::milliseconds(10);
constexpr double kClockStep = 0.05;

// The part of a view that shows on the window, in window coordinates.
gfx::Rect windowRect(const ui::View& view) {
    const gfx::Point topLeft = view.convertPointTo({0, 0}, nullptr);
    return {topLeft.x, topLeft.y, view.bounds().width, view.bounds().height};
}

} // namespace

Tour::Tour(Gallery& gallery, Options options) : gallery_(gallery), options_(std::move(options)) {}

Tour::~Tour() = default;

int Tour::run() {
    std::error_code error;
    std::filesystem::create_directories(options_.out, error);
    if (error || !std::filesystem::is_directory(options_.out)) {
        std::cerr << "gallery: cannot make the folder " << options_.out
                  << (error ? ": " + error.message() : "") << "\n";
        return 1;
    }
    host_ = std::make_unique<ui::HeadlessHost>();
    const gfx::Size size = ui::HeadlessHost::kPhoneSize;
    screen_ = gallery_.makeScreen({0, 0, size.width, size.height});
    host_->root()->addSubview(screen_);
    host_->runUntilIdle();

    const bool played =
        firstScreen() && scroll() && tapRow() && swipeToCall() && swipeToSave() && pullToRefresh();
    // Pages are written even after a failed step, with what was shot so far.
    std::string why;
    const std::string intro =
        "A scripted tour of the Morvane gallery: the venues of " + gallery_.data().city() +
        " in a table list, with pictures served by the gallery's own loopback server, downloaded and cached "
        "by the kit, and texts marked for translation shown in French. " +
        std::to_string(gallery_.translator()->answered()) + " texts were translated during the run.";
    if (!writeIndex(options_.out, "Morvane gallery: " + gallery_.data().city(), intro, shots_, &why)) {
        std::cerr << "gallery: " << why << "\n";
        return 1;
    }
    const auto index = std::filesystem::absolute(options_.out / "index.html").lexically_normal();
    std::cout << "Gallery pages (" << shots_.size() << " screenshots): " << index.string() << "\n";
    screen_.reset();
    host_.reset();
    return played ? 0 : 1;
}

// ---- Steps ----------------------------------------------------------------------

bool Tour::firstScreen() {
    if (!waitForScreen("first screen")) return false;
    return shoot(
        "01-venues.png", "The venues, best rated first",
        "Each row shows the venue's picture, downloaded from the gallery's own server into the picture "
        "cache: wide pictures fill the circle, square ones show whole and unclipped, tall ones sit on "
        "their corner colour. Texts marked for translation arrived later, from another thread, in French.");
}

bool Tour::scroll() {
    const double before = screen_->list()->tbl()->contentOffset().y;
    host_->drag({195, 700}, {195, 260}, 0.3, 12);
    host_->advance(3); // let the list glide to a stop
    if (screen_->list()->tbl()->contentOffset().y <= before + 100)
        return fail("scroll", "the list did not move");
    if (!waitForScreen("scroll")) return false;
    return shoot(
        "02-scrolled.png", "Scrolled down",
        "Rows that scroll in reuse the cells of rows that left; their pictures come from the server on "
        "first sight and from the cache after that.");
}

bool Tour::tapRow() {
    double x, y;
    std::string key;
    if (!visibleRowCenter(1, &x, &y, &key)) return fail("tap", "no row to tap");
    const int selects = screen_->events().selects;
    host_->tap({x, y});
    if (screen_->events().selects != selects + 1)
        return fail("tap", "the select callback was not called once");
    if (screen_->list()->currentSelection().value_or("") != key)
        return fail("tap", "the tapped row " + key + " did not become the selection");
    bool marked = false;
    for (const auto& cell : screen_->list()->tbl()->visibleCells())
        if (auto row = std::dynamic_pointer_cast<UITblCell>(cell))
            marked = marked || !row->checkLabel()->isHidden();
    if (!marked) return fail("tap", "no row shows the check mark");
    if (!waitForScreen("tap")) return false;
    return shoot("03-selected.png", "A tap selects a row",
                 "The tapped venue gets the check mark and the app's select callback tells the status line.");
}

bool Tour::swipeToCall() {
    double x, y;
    std::string key;
    if (!visibleRowCenter(2, &x, &y, &key)) return fail("swipe left", "no row to swipe");
    auto& table = *screen_->list()->tbl();
    host_->drag({340, y}, {150, y}, 0.25, 10);
    host_->advance(0.5);
    if (!table.swipedRow() || table.swipeOffset() >= 0)
        return fail("swipe left", "the row did not open on its trailing side");
    if (!shoot("04-swipe-call.png", "Swipe left: Call",
               "Swiping a row to the left shows its trailing action."))
        return false;

    const auto buttons = table.swipeActionButtons();
    if (buttons.empty()) return fail("swipe left", "no action button showed");
    const int calls = screen_->events().calls, selects = screen_->events().selects;
    host_->tap(windowRect(*buttons.front()).center());
    host_->advance(0.5);
    if (screen_->events().calls != calls + 1 || screen_->events().selects != selects + 1)
        return fail("swipe left",
                    "the action did not call its callback and then the select callback once each");
    return true;
}

bool Tour::swipeToSave() {
    double x, y;
    std::string key;
    if (!visibleRowCenter(3, &x, &y, &key)) return fail("swipe right", "no row to swipe");
    auto& table = *screen_->list()->tbl();
    host_->drag({40, y}, {230, y}, 0.25, 10);
    host_->advance(0.5);
    if (!table.swipedRow() || table.swipeOffset() <= 0)
        return fail("swipe right", "the row did not open on its leading side");
    if (!shoot("05-swipe-save.png", "Swipe right: Save",
               "Swiping the other way shows the leading action. The status line still tells of the call made "
               "with the previous row's trailing action."))
        return false;

    const auto buttons = table.swipeActionButtons();
    if (buttons.empty()) return fail("swipe right", "no action button showed");
    host_->tap(windowRect(*buttons.front()).center());
    host_->advance(0.5);
    if (!screen_->isSaved(key)) return fail("swipe right", "the venue " + key + " was not saved");
    if (!waitForScreen("save")) return false;
    return shoot("06-saved.png", "Saved for later",
                 "The Save action marks the venue; the populate callback adds a line to the row when it is "
                 "drawn again. Translated lines come later, so they land below it.");
}

bool Tour::pullToRefresh() {
    auto& table = *screen_->list()->tbl();
    table.scrollToRow(ui::IndexPath::forRow(0), ui::TableView::ScrollPosition::Top, false);
    // The photos' new date must be later than the cached copies' (stamps count whole seconds).
    host_->advance(2);
    if (!waitForScreen("back to the top")) return false;

    const int refreshes = screen_->events().refreshes;
    const gfx::Point start{195, 200};
    host_->touchDown(start);
    for (int step = 1; step <= 12; ++step) {
        host_->advance(0.03);
        host_->touchMove({start.x, start.y + step * 15.0});
    }
    const bool shot =
        shoot("07-pull.png", "Pull to refresh",
              "Pulling the list down past its top calls the app's refresh callback at once: the new "
              "venue is in while the finger is still down, and spinners turn while the newer photos "
              "download.");
    host_->touchUp({start.x, start.y + 180});
    host_->advance(1);
    if (!shot) return false;
    if (screen_->events().refreshes != refreshes + 1)
        return fail("pull", "the refresh callback was not called once");
    if (screen_->list()->myData()->size() != gallery_.data().rows(1, {}, "")->size())
        return fail("pull", "the list does not show the refreshed venues");
    if (!waitForScreen("refresh")) return false;
    for (const std::string& path : Gallery::kUpdatedPictures)
        if (gallery_.server().requestCount(path) < 2)
            return fail("refresh", "the new version of " + path + " was not downloaded");
    return shoot("08-refreshed.png", "Refreshed",
                 "After the pull a new venue is listed, and two venues announce newer photos by their date "
                 "stamp: the picture cache fetches the evening versions again from the server.");
}

// ---- Waiting and checking --------------------------------------------------------

bool Tour::waitFor(const std::function<bool()>& done) {
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::duration<double>(std::max(0.0, options_.waitSeconds));
    for (;;) {
        host_->runUntilIdle();
        if (done()) {
            host_->runUntilIdle();
            return true;
        }
        if (std::chrono::steady_clock::now() > deadline) return false;
        // Downloads run on real threads in real time; translations and
        // animations wait for the manual clock.
        std::this_thread::sleep_for(kTurn);
        host_->advance(kClockStep);
    }
}

bool Tour::waitForScreen(const std::string& step) {
    const bool ready =
        waitFor([this] { return rowsWithoutPicture().empty() && gallery_.translator()->pending() == 0; });
    if (ready) return true;
    std::string missing;
    for (const std::string& key : rowsWithoutPicture())
        missing += (missing.empty() ? "" : ", ") + key;
    if (!missing.empty()) return fail(step, "pictures did not arrive for " + missing);
    return fail(step, std::to_string(gallery_.translator()->pending()) + " translations did not arrive");
}

std::vector<std::string> Tour::rowsWithoutPicture() const {
    std::vector<std::string> missing;
    const auto& list = *screen_->list();
    for (const auto& cell : list.tbl()->visibleCells()) {
        auto row = std::dynamic_pointer_cast<UITblCell>(cell);
        const auto at = list.tbl()->indexPathForCell(*cell);
        if (!row || !at || at->row >= static_cast<int>(list.myData()->size())) continue;
        const NodePtr& venue = list.myData()->at(static_cast<std::size_t>(at->row)).node();
        if (!venue || !venue->has("picture")) continue;
        const bool shown =
            !row->indicator()->isAnimating() && !row->photo()->isHidden() && !row->photo()->image().isNull();
        if (!shown) missing.push_back(venue->get("key").toText());
    }
    return missing;
}

bool Tour::visibleRowCenter(std::size_t n, double* x, double* y, std::string* key) const {
    const auto& list = *screen_->list();
    const gfx::Rect visible = windowRect(list);
    auto rows = list.tbl()->indexPathsForVisibleRows();
    std::sort(rows.begin(), rows.end());
    std::size_t seen = 0;
    for (const ui::IndexPath& at : rows) {
        auto cell = list.tbl()->cellForRow(at);
        if (!cell) continue;
        const gfx::Rect rect = windowRect(*cell);
        if (!visible.contains(rect) || seen++ != n) continue;
        const NodePtr& venue = list.myData()->at(static_cast<std::size_t>(at.row)).node();
        if (!venue) return false;
        *x = rect.midX();
        *y = rect.midY();
        *key = venue->get("key").toText();
        return true;
    }
    return false;
}

bool Tour::shoot(const std::string& file, const std::string& title, const std::string& caption) {
    host_->runUntilIdle();
    if (!host_->writeSnapshot((options_.out / file).string(), options_.scale))
        return fail(title, "cannot write " + (options_.out / file).string());
    shots_.push_back({file, title, caption});
    return true;
}

bool Tour::fail(const std::string& step, const std::string& why) {
    std::cerr << "gallery: " << step << ": " << why << "\n";
    return false;
}

} // namespace gallery
