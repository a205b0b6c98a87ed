#include "FlightsScreen.h"

#include "Style.h"

#include <morvane/lists/UICTblCell.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Queue.h>

#include <vector>

namespace gallery {

using namespace morvane;

namespace {

using Keys = std::vector<std::string>;

// The service takes a moment, as a real one would.
constexpr double kServiceDelay = 0.6;

// Pushes one side of a flight into the screen (from the service's thread).
void pushSide(UIFltSearch& screen, std::string_view side, const NodePtr& fields, const char* airportCaption) {
    if (!fields) return;
    const Value zone = fields->get("zone");
    screen.addAirport(side, airportCaption, fields->get("airport"));
    screen.addFlightDate(side, "Date", fields->get("date"));
    screen.addSchedule(side, "Scheduled", fields->get("scheduled"), zone);
    screen.addActual(side, "Actual", fields->get("actual"), zone);
    screen.addTerminal(side, "Terminal", fields->get("terminal"));
    screen.addGate(side, "Gate", fields->get("gate"));
    screen.addBaggage(side, "Baggage", fields->get("baggage"));
}

} // namespace

FlightsScreen::FlightsScreen(const gfx::Rect& frame, NodePtr flights)
    : TitledScreen(frame, "Flights", "Type a flight number, or switch to arrivals") {
    service_->flights = flights ? std::move(flights) : Node::make();
    search_ = UIFltSearch::make();
    addSubview(search_);
}

std::shared_ptr<FlightsScreen> FlightsScreen::make(const gfx::Rect& frame, NodePtr flights, Back back) {
    auto screen = std::make_shared<FlightsScreen>(frame, std::move(flights));
    screen->wire(std::move(back));
    return screen;
}

void FlightsScreen::wire(Back back) {
    watchBack(std::move(back));
    auto& composite = *search_->tblHdrUI();
    composite.cfg({
        .image = [](Keys& image) { image = {"image"}; },
        .header = [](Keys& header) { header = {"name"}; },
        .body = [](Keys& body) { body = {"route"}; },
        .price = [](Keys& price) { price = {"time"}; },
        .sortBy = [](Keys& sortBy) { sortBy = {"time"}; },
        .numOfCol = [](float& columns) { columns = 2; },
    });
    search_->setBackgroundColor(style::kList);
    search_->searchFltUI()->setBackgroundColor(style::kBar);
    const NodePtr& flights = service_->flights;
    search_->addHeaderTitle(flights->get("airport").textOr());
    search_->addHeaderSubtitle(flights->get("subtitle").textOr());
    search_->addHeaderImage(flights->get("photo").textOr(), std::nullopt);

    std::weak_ptr<FlightsScreen> weak = std::static_pointer_cast<FlightsScreen>(shared_from_this());
    // The lists come from the service: a data set holding "api" is fetched
    // through this callback, answered on another thread.
    composite.watchFlight([service = service_](const NodePtr& set, UITblHdrAll::FlightCompletion done) {
        ++service->requests;
        const std::string section = set ? set->get("api").textOr() : "";
        sys::Queue::global().after(kServiceDelay, [service, section, done = std::move(done)] {
            const NodePtr& list = service->flights->get(section).node();
            done(list ? list->deepCopyDictionary() : Node::make());
            ++service->answers;
        });
    });
    composite.watchSubtitle(0, [weak](const std::string& title) {
        if (auto self = weak.lock()) self->showSegment(title);
        return -1L;
    });
    // A tapped flight is looked up like a typed one.
    composite.watchTbl("flights",
                       [weak](const Value& key, const NodePtr&) {
                           if (auto self = weak.lock()) self->lookUp(key.toText());
                       },
                       {}, {});
    search_->watchSearch([weak](const std::string& number, const NodePtr&) {
        if (auto self = weak.lock()) self->lookUp(number);
    });
    // The switch starts on its first segment.
    showSegment("Arrivals");
}

void FlightsScreen::showSegment(const std::string& title) {
    segment_ = title;
    auto& composite = *search_->tblHdrUI();
    composite.clearHeader();
    composite.addDataWhenSelectHeader(title,
                                      Node::make({{"api", title == "Arrivals" ? "arrivals" : "departures"}}));
    composite.refreshHeader();
    status()->setText(title + " · type a flight number or tap one");
}

void FlightsScreen::lookUp(const std::string& number) {
    search_->resetFld();
    search_->searchFltUI()->txtZB()->addError("", gfx::Color::clearColor());
    status()->setText("Looking up " + number + "…");
    ++service_->requests;
    std::weak_ptr<FlightsScreen> weak = std::static_pointer_cast<FlightsScreen>(shared_from_this());
    sys::Queue::global().after(kServiceDelay, [weak, number, service = service_] {
        // Only the screen's parts are touched here: the kit queues each field
        // for the main thread itself. The screen is let go on the main queue.
        auto self = weak.lock();
        if (!self) return;
        NodePtr flight;
        std::string compact;
        for (char c : number)
            if (c != ' ') compact += c;
        for (const char* section : {"departures", "arrivals"})
            if (const NodePtr& list = service->flights->get(section).node();
                list && list->get(compact).node())
                flight = list->get(compact).node();
        auto& screen = *self->search_;
        if (flight) {
            screen.addFlightHeader(flight->get("key"), flight->get("airline"), flight->get("status"));
            pushSide(screen, "D", flight->get("departure").node(), "From");
            pushSide(screen, "A", flight->get("arrival").node(), "To");
        }
        sys::Queue::main().async([self = std::move(self), number, found = bool(flight)] {
            if (found) {
                self->status()->setText(number + " · CLOSE or a tap outside puts it away");
            } else {
                self->search_->showProgress(false);
                self->search_->searchFltUI()->txtZB()->addError("No flight " + number + " today",
                                                                gfx::Color::redColor());
                self->status()->setText("No flight " + number);
            }
        });
        ++service->answers;
    });
}

std::string FlightsScreen::waitingFor() const {
    if (answers() < requests()) return "the flight service's answer";
    std::string missing;
    for (const auto& cell : search_->tblHdrUI()->ctblUI()->tbl()->visibleCells()) {
        auto tile = std::dynamic_pointer_cast<UICTblCell>(cell);
        if (tile && (tile->indicator()->isAnimating() || tile->photo()->image().isNull()))
            missing += (missing.empty() ? "" : ", ") + tile->headLbl()->text();
    }
    return missing.empty() ? "" : "pictures for " + missing;
}

void FlightsScreen::layoutSubviews() {
    search_->setFrame(placeFrame());
}

} // namespace gallery
