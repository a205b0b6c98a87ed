#pragma once
// UIFltDisplay: the flight status panel: the flight's title, airline and
// status, a small aeroplane picture, the departure and arrival cards side by
// side and a "CLOSE" bar. The application pushes every value in as text,
// field by field, from any thread.
//
//   display->addFlightHeader("AS 1144", "Alaska Airlines", "On time");
//   display->addGate("D", "Gate", "N12");        // "A" fills the arrival card, anything else departure
//   display->gateLeft("Gate", "C3");             // the Left forms fill the arrival card (on the right)
//   display->watchClose([](bool) { ... });
//
// The picture is the application's "airplane2w" resource, or the kit's own.
// Threads: every fill operation queues its work on the main queue, in the
// order called; the rest is main thread only. The close callback may release
// the panel.

#include <morvane/flight/UIFltSchedule.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace morvane {

class UIFltDisplay : public ui::View {
  public:
    using Caption = UIFltSchedule::Caption;
    using CloseCB = std::function<void(bool flag)>;

    explicit UIFltDisplay(const gfx::Rect& frame = {});
    ~UIFltDisplay() override;

    const std::shared_ptr<ui::Label>& title() const { return title_; }
    const std::shared_ptr<ui::Label>& airline() const { return airline_; }
    const std::shared_ptr<ui::Label>& status() const { return status_; }
    const std::shared_ptr<ui::ImageView>& cimg() const { return cimg_; }
    const std::shared_ptr<UIFltSchedule>& departureUI() const { return departureUI_; }
    const std::shared_ptr<UIFltSchedule>& arriveUI() const { return arriveUI_; }
    const std::shared_ptr<ui::Button>& closeBtn() const { return closeBtn_; }

    // Each value that is a text replaces its line; others leave it as it was.
    void addFlightHeader(Value title, Value airline, Value status);

    // The side "A" is the arrival card; any other text the departure card.
    void addAirport(std::string_view side, Caption caption, Value value);
    void addFlightDate(std::string_view side, Caption caption, Value value);
    void addSchedule(std::string_view side, Caption caption, Value value, Value remark);
    void addActual(std::string_view side, Caption caption, Value value, Value remark);
    void addTerminal(std::string_view side, Caption caption, Value value);
    void addGate(std::string_view side, Caption caption, Value value);
    void addBaggage(std::string_view side, Caption caption, Value value);
    // The Left forms fill the arrival card, the Right forms the departure card.
    void airportLeft(Caption caption, Value value) { addAirport("A", std::move(caption), std::move(value)); }
    void airportRight(Caption caption, Value value) { addAirport("D", std::move(caption), std::move(value)); }
    void flightDateLeft(Caption caption, Value value) {
        addFlightDate("A", std::move(caption), std::move(value));
    }
    void flightDateRight(Caption caption, Value value) {
        addFlightDate("D", std::move(caption), std::move(value));
    }
    void scheduleLeft(Caption caption, Value value, Value remark) {
        addSchedule("A", std::move(caption), std::move(value), std::move(remark));
    }
    void scheduleRight(Caption caption, Value value, Value remark) {
        addSchedule("D", std::move(caption), std::move(value), std::move(remark));
    }
    void actualLeft(Caption caption, Value value, Value remark) {
        addActual("A", std::move(caption), std::move(value), std::move(remark));
    }
    void actualRight(Caption caption, Value value, Value remark) {
        addActual("D", std::move(caption), std::move(value), std::move(remark));
    }
    void terminalLeft(Caption caption, Value value) {
        addTerminal("A", std::move(caption), std::move(value));
    }
    void terminalRight(Caption caption, Value value) {
        addTerminal("D", std::move(caption), std::move(value));
    }
    void gateLeft(Caption caption, Value value) { addGate("A", std::move(caption), std::move(value)); }
    void gateRight(Caption caption, Value value) { addGate("D", std::move(caption), std::move(value)); }
    void baggageLeft(Caption caption, Value value) { addBaggage("A", std::move(caption), std::move(value)); }
    void baggageRight(Caption caption, Value value) { addBaggage("D", std::move(caption), std::move(value)); }
    // Empties both cards.
    void resetFld();

    void watchClose(CloseCB callback);
    void closeAction();

    // The panel's colour; its cards take it a little darker.
    void setBackgroundColor(const gfx::Color& color) override;
    static void addBorder(ui::View& view, double width);
    // Twice the height of "Sample Text" in the system font: the panel's unit.
    static double getTextHeight();

  protected:
    void layoutSubviews() override;

  private:
    UIFltSchedule& card(std::string_view side) { return side == "A" ? *arriveUI_ : *departureUI_; }

    std::shared_ptr<ui::Label> title_, airline_, status_;
    std::shared_ptr<ui::ImageView> cimg_;
    std::shared_ptr<UIFltSchedule> departureUI_, arriveUI_;
    std::shared_ptr<ui::Button> closeBtn_;
    CloseCB closeCB_;
};

} // namespace morvane
