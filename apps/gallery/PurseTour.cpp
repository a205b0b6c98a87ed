// The purse's tour: the folio's entries, one opened on the panel with its
// code, lines and total, the reader pointed at another wallet's code, and
// the payment strip's report.

#include "PurseScreen.h"
#include "TourSteps.h"

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/ui/hosts/HeadlessHost.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kScreen = "purse";

std::shared_ptr<PurseScreen> purse(TourContext& tour) {
    return tour.screen<PurseScreen>();
}

// Taps the grid tile of the entry under that key.
std::string tapEntry(TourContext& tour, const std::string& key) {
    const auto& grid = *purse(tour)->purse()->tbl();
    const ListPtr& entries = grid.myData();
    for (std::size_t i = 0; entries && i < entries->size(); ++i) {
        const NodePtr& entry = entries->at(i).node();
        if (!entry || !entry->get("key").text() || *entry->get("key").text() != key) continue;
        const auto& view = *grid.tbl();
        const gfx::Rect tile = view.convertRectTo(view.frameForItem(ui::IndexPath::forItem(int(i))), nullptr);
        tour.host().tap(tile.center());
        return {};
    }
    return "no tile for " + key;
}

} // namespace

std::vector<TourStep> purseSteps() {
    return {
        {
            .screen = kScreen,
            .title = "The hotel folio",
            .caption = "The purse's wallets are its header's data sets; the first, the hotel folio, fills "
                       "the grid with its entries and their prices, in the wallet's own order.",
            .check = [](TourContext& tour) -> std::string {
                const ListPtr& entries = purse(tour)->purse()->tbl()->myData();
                return entries && entries->size() == 3 ? "" : "the folio's three entries";
            },
        },
        {
            .screen = kScreen,
            .title = "Dinner on the panel",
            .caption = "A tap on an entry opens the QR profile panel over the purse: the entry (without "
                       "its lines) as a code, the dishes chosen one under the other, and the total of every "
                       "price in the entry.",
            .act = [](TourContext& tour) { return tapEntry(tour, "dinner"); },
            .check = [](TourContext& tour) -> std::string {
                const auto& panel = *purse(tour)->purse()->qrProfile();
                if (panel.isHidden()) return "the panel";
                const auto& lines = panel.qrProfileTbl()->displayData();
                return !lines.empty() && *lines.back()->get("val").text() == "55.70" ? "" : "the total 55.70";
            },
        },
        {
            .screen = kScreen,
            .title = "Another entry scanned",
            .caption = "\"Scan QR code\" swaps the code for the reader; shown the spa card's massage code "
                       "through the virtual camera, it reads the entry back on its own queue and the panel "
                       "reports it.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = purse(tour);
                if (!tour.tap(*screen->purse()->qrProfile()->scanQRBtn())) return "no Scan button";
                return screen->showCodeOf("massage") ? "" : "no camera for the reader";
            },
            .check = [](TourContext& tour) -> std::string {
                return purse(tour)->lastRead() == "Massage, 50 min" ? "" : "the massage entry read back";
            },
        },
        {
            .screen = kScreen,
            .title = "Paying by card",
            .caption = "Back on the purse, the payment strip's Credit Card hides the strip and reports the "
                       "choice.",
            .act = [](TourContext& tour) -> std::string {
                const auto screen = purse(tour);
                if (!tour.tap(*screen->purse()->qrProfile()->backBtn())) return "no back button";
                tour.host().runUntilIdle();
                return tour.tap(*screen->pay()->creditPay()) ? "" : "no Credit Card button";
            },
            .check = [](TourContext& tour) -> std::string {
                const auto screen = purse(tour);
                return screen->pay()->isHidden() && screen->purse()->qrProfile()->isHidden()
                           ? ""
                           : "the strip hidden";
            },
        },
    };
}

} // namespace gallery
