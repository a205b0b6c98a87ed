// Scrolling long lists: the cost of a frame (layout and drawing) while a
// 100,000-row table and a 100,000-item grid scroll, at their start, at their
// end, and for the same frames over 100 rows or items; and the most cells
// alive at once compared with the rows on screen. Ends with one GOAL line per goal.

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/ImageContext.h>
#include <morvane/ui/collections/CollectionView.h>
#include <morvane/ui/collections/TableView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

using namespace morvane;

namespace {

constexpr int kFrames = 120;
constexpr double kStep = 7; // points scrolled per frame
constexpr int kRounds = 5;

struct Rows : ui::TableViewDataSource, ui::TableViewDelegate {
    int count = 0;
    int numberOfRows(ui::TableView&, int) override { return count; }
    std::shared_ptr<ui::TableViewCell> cellForRow(ui::TableView& table, ui::IndexPath at) override {
        auto cell = table.dequeueReusableCell("row", at);
        cell->textLabel().setText("Room " + std::to_string(at.row));
        return cell;
    }
    // Rows of two heights, so the running sums matter.
    std::optional<double> heightForRow(ui::TableView&, ui::IndexPath at) override {
        return at.row % 3 ? 44 : 60;
    }
};

class Tile : public ui::CollectionViewCell {
  public:
    explicit Tile(std::string id) : CollectionViewCell(std::move(id)) {
        label = std::make_shared<ui::Label>();
        contentView()->addSubview(label);
        setBackgroundColor(gfx::Color::fromBytes(200, 220, 240));
    }
    void layoutSubviews() override {
        CollectionViewCell::layoutSubviews();
        label->setFrame(contentView()->bounds());
    }
    std::shared_ptr<ui::Label> label;
};

struct Tiles : ui::CollectionViewDataSource, ui::CollectionViewDelegate {
    int count = 0;
    int numberOfItems(ui::CollectionView&, int) override { return count; }
    std::shared_ptr<ui::CollectionViewCell> cellForItem(ui::CollectionView& grid, ui::IndexPath at) override {
        auto cell = std::static_pointer_cast<Tile>(grid.dequeueReusableCell("tile", at));
        cell->label->setText(std::to_string(at.item()));
        return cell;
    }
};

struct Result {
    double medianFrame = 0; // seconds
    int worstExcess = 0;    // live cells minus visible cells, at most
};

// Scrolls `frames` steps down from `start`, laying out and drawing each frame.
template <class List> Result scrollFrames(ui::Window& window, List& list, double start, gfx::Canvas& canvas) {
    ui::Renderer renderer;
    list.setContentOffset({0, start});
    renderer.render(window, canvas);
    std::vector<double> times;
    Result result;
    for (int i = 1; i <= kFrames; ++i) {
        auto t0 = std::chrono::steady_clock::now();
        list.setContentOffset({0, start + i * kStep});
        renderer.render(window, canvas);
        auto t1 = std::chrono::steady_clock::now();
        times.push_back(std::chrono::duration<double>(t1 - t0).count());
        result.worstExcess =
            std::max(result.worstExcess, list.liveCellCount() - int(list.visibleCells().size()));
    }
    std::nth_element(times.begin(), times.begin() + kFrames / 2, times.end());
    result.medianFrame = times[kFrames / 2];
    return result;
}

void goal(const char* name, double measured, double target, bool met) {
    std::printf("GOAL %s measured=%.3f target=%.3f met=%s\n", name, measured, target, met ? "yes" : "no");
}

} // namespace

int main() {
    ui::HeadlessHost host;
    gfx::ImageContext context({390, 844}, gfx::Opacity::Opaque, 2);
    gfx::Canvas& canvas = context.canvas();

    Rows bigRows, smallRows;
    bigRows.count = 100000;
    smallRows.count = 100;
    auto bigTable = std::make_shared<ui::TableView>(gfx::Rect{0, 0, 390, 844});
    auto smallTable = std::make_shared<ui::TableView>(gfx::Rect{0, 0, 390, 844});
    for (auto& [table, rows] : {std::pair{bigTable, &bigRows}, std::pair{smallTable, &smallRows}}) {
        table->registerCell<ui::TableViewCell>("row");
        table->setDataSource(rows);
        table->setDelegate(rows);
    }

    Tiles bigTiles, smallTiles;
    bigTiles.count = 100000;
    smallTiles.count = 100;
    ui::FlowLayout flow;
    flow.setItemSize({141, 180});
    flow.setMinimumInteritemSpacing(6);
    flow.setMinimumLineSpacing(6);
    flow.setSectionInset({6, 6, 6, 6});
    auto bigGrid = std::make_shared<ui::CollectionView>(gfx::Rect{0, 0, 300, 844}, flow);
    auto smallGrid = std::make_shared<ui::CollectionView>(gfx::Rect{0, 0, 300, 844}, flow);
    for (auto& [grid, tiles] : {std::pair{bigGrid, &bigTiles}, std::pair{smallGrid, &smallTiles}}) {
        grid->registerCell<Tile>("tile");
        grid->setDataSource(tiles);
        grid->setDelegate(tiles);
    }

    auto& window = *host.root();
    auto measure = [&](auto& list, double start) {
        window.addSubview(list);
        window.layoutIfNeeded();
        Result r = scrollFrames(window, *list, start, canvas);
        list->removeFromSuperview();
        return r;
    };

    // Rounds interleave the cases so that a busy moment of the machine does
    // not fall on one case only; each case keeps its best round.
    Result tStart{1e9, 0}, tEnd{1e9, 0}, tSmall{1e9, 0}, gStart{1e9, 0}, gEnd{1e9, 0}, gSmall{1e9, 0};
    auto keep = [](Result& best, Result r) {
        best.medianFrame = std::min(best.medianFrame, r.medianFrame);
        best.worstExcess = std::max(best.worstExcess, r.worstExcess);
    };
    for (int round = 0; round < kRounds; ++round) {
        double tableEnd = bigTable->maximumContentOffset().y - kFrames * kStep - 1;
        double gridEnd = bigGrid->maximumContentOffset().y - kFrames * kStep - 1;
        keep(tStart, measure(bigTable, 0));
        keep(tEnd, measure(bigTable, tableEnd));
        keep(tSmall, measure(smallTable, 0));
        keep(gStart, measure(bigGrid, 0));
        keep(gEnd, measure(bigGrid, gridEnd));
        keep(gSmall, measure(smallGrid, 0));
    }

    std::printf("table frame: start %.1f us, end %.1f us, 100 rows %.1f us\n", tStart.medianFrame * 1e6,
                tEnd.medianFrame * 1e6, tSmall.medianFrame * 1e6);
    std::printf("grid frame:  start %.1f us, end %.1f us, 100 items %.1f us\n", gStart.medianFrame * 1e6,
                gEnd.medianFrame * 1e6, gSmall.medianFrame * 1e6);

    double tableEndRatio = tEnd.medianFrame / tStart.medianFrame;
    double tableSizeRatio = tEnd.medianFrame / tSmall.medianFrame;
    double gridEndRatio = gEnd.medianFrame / gStart.medianFrame;
    double gridSizeRatio = gEnd.medianFrame / gSmall.medianFrame;
    int tableExcess = std::max({tStart.worstExcess, tEnd.worstExcess, tSmall.worstExcess});
    int gridExcess = std::max({gStart.worstExcess, gEnd.worstExcess, gSmall.worstExcess});
    goal("table_100k_frame_end_vs_start", tableEndRatio, 1.2, tableEndRatio <= 1.2);
    goal("table_100k_end_vs_100_rows_frame", tableSizeRatio, 1.2, tableSizeRatio <= 1.2);
    goal("table_live_cells_over_visible", tableExcess, 2, tableExcess <= 2);
    goal("grid_100k_frame_end_vs_start", gridEndRatio, 1.2, gridEndRatio <= 1.2);
    goal("grid_100k_end_vs_100_items_frame", gridSizeRatio, 1.2, gridSizeRatio <= 1.2);
    goal("grid_live_cells_over_visible", gridExcess, 2, gridExcess <= 2);
    return 0;
}
