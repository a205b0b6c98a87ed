#pragma once
// The gallery's flights: an airport's departures and arrivals in the search
// screen's grid (the header's switch between them, each list fetched through
// the composite's flight callback from a small flight service that answers
// on a background queue), and the flight search: a number typed, Search, the
// busy indicator, then the result pushed into the display field by field from
// the service's thread. An unknown number gets the search box's error line.
//
//   auto screen = FlightsScreen::make(frame, flights, goHome);

#include "TitledScreen.h"

#include <morvane/flight/UIFltSearch.h>
#include <morvane/model/Forward.h>

#include <atomic>
#include <memory>
#include <string>

namespace gallery {

class FlightsScreen : public TitledScreen {
  public:
    static std::shared_ptr<FlightsScreen> make(const morvane::gfx::Rect& frame, morvane::NodePtr flights,
                                               Back back);
    FlightsScreen(const morvane::gfx::Rect& frame, morvane::NodePtr flights);

    const std::shared_ptr<morvane::UIFltSearch>& search() const { return search_; }
    const std::string& segment() const { return segment_; }
    // Requests made to the flight service and answers it gave (lists and flights).
    int requests() const { return service_->requests; }
    int answers() const { return service_->answers; }
    std::string waitingFor() const override;

  private:
    // The sample flight service: answers after a short delay, on a background queue.
    struct Service {
        morvane::NodePtr flights;
        std::atomic<int> requests{0};
        std::atomic<int> answers{0};
    };

    void wire(Back back);
    void showSegment(const std::string& title);
    void lookUp(const std::string& number);
    void layoutSubviews() override;

    std::shared_ptr<Service> service_ = std::make_shared<Service>();
    std::shared_ptr<morvane::UIFltSearch> search_;
    std::string segment_;
};

} // namespace gallery
