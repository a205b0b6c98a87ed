#include "Tour.h"

#include "Gallery.h"
#include "TourSteps.h"

#include <morvane/lists/UITbl.h>
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

} // namespace

// ---- What steps can do ---------------------------------------------------------

gfx::Rect TourContext::windowRect(const ui::View& view) {
    const gfx::Point topLeft = view.convertPointTo({0, 0}, nullptr);
    return {topLeft.x, topLeft.y, view.bounds().width, view.bounds().height};
}

bool TourContext::tap(const ui::View& view) {
    if (!view.window() || view.isHidden()) return false;
    host_.tap(windowRect(view).center());
    return true;
}

std::string TourContext::keysOf(const ListPtr& rows) {
    std::string keys;
    for (const Value& row : *rows)
        keys += (keys.empty() ? "" : " ") + (row.node() ? row.node()->get("key").toText() : "?");
    return keys;
}

bool TourContext::visibleRow(const UITbl& list, std::size_t n, gfx::Rect* rect, std::string* key) const {
    const gfx::Rect visible = windowRect(list);
    auto rows = list.tbl()->indexPathsForVisibleRows();
    std::sort(rows.begin(), rows.end());
    std::size_t seen = 0;
    for (const ui::IndexPath& at : rows) {
        auto cell = list.tbl()->cellForRow(at);
        if (!cell) continue;
        const gfx::Rect shown = windowRect(*cell);
        if (!visible.contains(shown) || seen++ != n) continue;
        const NodePtr& row = list.myData()->at(static_cast<std::size_t>(at.row)).node();
        if (!row) return false;
        *rect = shown;
        *key = row->get("key").toText();
        return true;
    }
    return false;
}

// ---- The runner -------------------------------------------------------------------

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
    app_ = gallery_.makeApp({0, 0, size.width, size.height});
    host_->root()->addSubview(app_);
    host_->runUntilIdle();

    TourContext context(*host_, *app_, gallery_);
    const bool played = play(context, tourSteps());

    // Pages are written even after a failed step, with what was shot so far.
    std::vector<Section> sections{
        {"Home", "The home screen lists the gallery's screens; a tap opens one.", {}}};
    for (const Navigator::Entry& entry : app_->entries())
        sections.push_back({entry.title, entry.summary, {}});
    for (const auto& [screen, shot] : shots_) {
        std::size_t at = 0;
        for (std::size_t i = 0; i < app_->entries().size(); ++i)
            if (app_->entries()[i].id == screen) at = i + 1;
        sections[at].shots.push_back(shot);
    }
    std::erase_if(sections, [](const Section& section) { return section.shots.empty(); });
    const std::string intro =
        "A scripted tour of the Morvane gallery, a small hospitality and travel app built on the kit: every "
        "screen below was driven by taps, swipes and drags on a headless phone, and checked after each step. "
        "Pictures come from the gallery's own loopback server through the kit's download and cache; texts "
        "marked for translation arrive later, from another thread, in French (" +
        std::to_string(gallery_.translator()->answered()) + " during this run).";
    std::string why;
    if (!writeIndex(options_.out, "Morvane gallery: " + gallery_.data().city(), intro, sections, &why)) {
        std::cerr << "gallery: " << why << "\n";
        return 1;
    }
    const auto index = std::filesystem::absolute(options_.out / "index.html").lexically_normal();
    std::cout << "Gallery pages (" << shots_.size() << " screenshots): " << index.string() << "\n";
    app_.reset();
    host_.reset();
    return played ? 0 : 1;
}

bool Tour::play(TourContext& context, const std::vector<TourStep>& steps) {
    for (const TourStep& step : steps) {
        const std::string name = step.screen + ": " + (step.title.empty() ? "a step" : step.title);
        if (!go(context, step.screen)) return false;
        if (step.act)
            if (const std::string why = step.act(context); !why.empty()) return fail(name, why);
        const std::string missing = waitFor([&]() -> std::string {
            if (step.check)
                if (std::string why = step.check(context); !why.empty()) return why;
            if (!step.settle) return {};
            const std::string waiting = app_->current()->waitingFor();
            return waiting.empty() ? std::string() : "still waiting for " + waiting;
        });
        if (!missing.empty()) return fail(name, missing);
        if (!step.title.empty() && !shoot(step.screen, step.title, step.caption)) return false;
    }
    return true;
}

bool Tour::go(TourContext& context, const std::string& screen) {
    if (app_->currentId() == screen) return true;
    if (app_->currentId() != Navigator::kHomeId) {
        const auto back = app_->current()->backControl();
        if (!back || !context.tap(*back)) return fail("back to the home screen", "no back control on show");
        if (!waitFor([&] {
                 return app_->currentId() == Navigator::kHomeId ? "" : "the home screen";
             }).empty())
            return fail("back to the home screen", "the back control did not lead home");
    }
    if (screen == Navigator::kHomeId) return true;
    // A screen further down the home list is scrolled into view first, as a finger would.
    const UITbl& home = *app_->homeList();
    for (std::size_t i = 0; home.myData() && i < home.myData()->size(); ++i) {
        const NodePtr& row = home.myData()->at(i).node();
        if (!row || row->get("key").toText() != screen) continue;
        home.tbl()->scrollToRow(ui::IndexPath::forRow(int(i)), ui::TableView::ScrollPosition::Middle, false);
        host_->runUntilIdle();
    }
    for (std::size_t n = 0;; ++n) {
        gfx::Rect row;
        std::string key;
        if (!context.visibleRow(*app_->homeList(), n, &row, &key))
            return fail("open " + screen, "the home screen lists no such screen");
        if (key != screen) continue;
        host_->tap(row.center());
        break;
    }
    if (!waitFor([&] { return app_->currentId() == screen ? "" : "the screen"; }).empty())
        return fail("open " + screen, "a tap on its home row did not open it");
    return true;
}

std::string Tour::waitFor(const std::function<std::string()>& missing) {
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::duration<double>(std::max(0.0, options_.waitSeconds));
    for (;;) {
        host_->runUntilIdle();
        std::string why = missing();
        if (why.empty()) {
            host_->runUntilIdle();
            return why;
        }
        if (std::chrono::steady_clock::now() > deadline) return why;
        // Downloads run on real threads in real time; translations, answers
        // and animations wait for the manual clock.
        std::this_thread::sleep_for(kTurn);
        host_->advance(kClockStep);
    }
}

bool Tour::shoot(const std::string& screen, const std::string& title, const std::string& caption) {
    host_->runUntilIdle();
    int count = 1;
    for (const auto& shot : shots_)
        count += shot.first == screen;
    const std::string file = screen + "-" + (count < 10 ? "0" : "") + std::to_string(count) + ".png";
    if (!host_->writeSnapshot((options_.out / file).string(), options_.scale))
        return fail(title, "cannot write " + (options_.out / file).string());
    shots_.push_back({screen, {file, title, caption}});
    return true;
}

bool Tour::fail(const std::string& step, const std::string& why) {
    std::cerr << "gallery: " << step << ": " << why << "\n";
    return false;
}

} // namespace gallery
