#include "BookingsScreen.h"

#include "VenueData.h"

#include <morvane/gfx/Font.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Colors.h>

#include <utility>
#include <vector>

namespace gallery {

using namespace morvane;

namespace {
using Keys = std::vector<std::string>;
} // namespace

BookingsScreen::BookingsScreen(const gfx::Rect& frame, NodePtr bookings)
    : CompositeScreen(frame, std::make_shared<UITblHdrAll>(UITblHdrAll::Form::List, gfx::Rect{}),
                      "Switch arrivals and departures · tap the day · swipe a guest"),
      bookings_(bookings ? std::move(bookings) : Node::make()) {}

std::shared_ptr<BookingsScreen> BookingsScreen::make(const gfx::Rect& frame, NodePtr bookings, Back back) {
    auto screen = std::make_shared<BookingsScreen>(frame, std::move(bookings));
    screen->wire(std::move(back));
    return screen;
}

void BookingsScreen::wire(Back back) {
    auto& composite = *this->composite();
    composite.cfg({
        .header = [](Keys& header) { header = {"name"}; },
        .body =
            [](Keys& body) {
                body = {"room", "stay", "done"};
            },
        .price = [](Keys& price) { price = {"price"}; },
        .sortBy = [](Keys& sortBy) { sortBy = {"name"}; },
        .ascending = [](bool& ascending) { ascending = true; },
        .cellHeight = [](float& lines) { lines = 4; },
        .checkBox = [](bool& checkBox) { checkBox = true; },
    });
    composite.setBackgroundColor(style::kList);

    std::weak_ptr<BookingsScreen> weak = std::static_pointer_cast<BookingsScreen>(shared_from_this());
    composite.watchTbl(
        "desk",
        [weak](const Value&, const NodePtr& row) {
            // The list selects a swiped row after its action: keep the action's word.
            auto self = weak.lock();
            if (!self) return;
            self->say(self->swipeMessage_.empty() ? "Selected " + displayName(row)
                                                  : std::exchange(self->swipeMessage_, {}));
        },
        [weak](const Value& key, const NodePtr& row) {
            // Just before a row is drawn: what the desk did with it, as a line.
            auto self = weak.lock();
            if (!self || !row) return;
            const std::string done = self->statusOf(key.toText());
            row->set("done", done.empty() ? Value() : Value("✓ " + done));
        },
        {});
    composite.watchSwipe("Check in/out", style::kGo, [weak](long, const NodePtr& row) {
        if (auto self = weak.lock())
            self->mark(row, self->segment_ == "Arrivals" ? "Checked in" : "Checked out");
    });
    composite.watchSwipeLeft("Cancel", style::kStop, [weak](long, const NodePtr& row) {
        if (auto self = weak.lock()) self->mark(row, "Cancelled");
    });
    composite.watchSubtitle(0, [weak](const std::string& title) {
        if (auto self = weak.lock()) self->showSegment(title);
        return -1L; // the tapped segment stays selected
    });
    watchBack(std::move(back));
    composite.addHeaderTitle(bookings_->get("title").textOr());
    composite.addHeaderSubtitle(bookings_->get("subtitle").textOr());
    composite.addHeaderImage(bookings_->get("photo").textOr(), std::nullopt);
    showSegment("Arrivals");
}

void BookingsScreen::showSegment(const std::string& title) {
    segment_ = title;
    composite()->clearHeader();
    const char* section = title == "Departures" ? "departures" : "arrivals";
    if (const NodePtr& days = bookings_->get(section).node())
        for (const auto& [day, guests] : *days)
            composite()->addDataWhenSelectHeader(day, guests);
    composite()->refreshHeader();
    say(title + " · tap the day for the next one");
}

bool BookingsScreen::showDay(const std::string& day) {
    if (!composite()->currentSel(day)) {
        say("No list for " + day);
        return false;
    }
    // The header shows the day and hands its guests to the rows.
    const ListPtr& days = composite()->headerUI()->mySelection();
    for (std::size_t i = 0; i < days->size(); ++i)
        if (days->at(i).toText().ends_with("-" + day)) composite()->headerUI()->addSelection(long(i));
    say(segment_ + " · " + day);
    return true;
}

std::string BookingsScreen::statusOf(const std::string& key) const {
    const auto found = done_.find(key);
    return found == done_.end() ? std::string() : found->second;
}

void BookingsScreen::mark(const NodePtr& row, const std::string& what) {
    if (!row) return;
    done_[row->get("key").toText()] = what;
    swipeMessage_ = what + ": " + displayName(row);
    // Redraw once the swipe's own handling is over, so the row shows its new line.
    std::weak_ptr<UITblHdrAll> composite = this->composite();
    sys::Queue::main().async([composite] {
        if (auto alive = composite.lock()) (alive->tblUI() ? alive->tblUI()->refresh() : void());
    });
}

} // namespace gallery
