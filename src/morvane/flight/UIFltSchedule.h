#pragma once
// UIFltSchedule: one side of a flight (departure or arrival) as seven
// compact rows: airport, date, scheduled and actual time, terminal, gate and
// baggage belt. The baggage row shows only with a value; terminal and gate
// then share their line with it in thirds, else in halves.
//
//   card->addAirport("From", "Seattle Tacoma International");
//   card->addSchedule("Scheduled", "10:40", "PST");
//   card->addBaggage(std::nullopt, std::nullopt);   // no belt yet: row hidden
//
// Every fill operation may be called from any thread: its work is applied on
// the main queue, in the order called. Updates that pile up before the main
// thread gets to them are merged row by row (the last value of a row wins,
// a caption given earlier is kept), so a flood of updates costs one pass per
// frame, not one per update. The card is held weakly by that work, so a card
// released meanwhile simply gets nothing.

#include <morvane/flight/UIFltTiny.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace morvane {

class UIFltSchedule : public ui::View {
  public:
    using Caption = std::optional<std::string>;

    explicit UIFltSchedule(const gfx::Rect& frame = {});

    const std::shared_ptr<UIFltTiny>& airport() const { return airport_; }
    const std::shared_ptr<UIFltTiny>& flightDate() const { return flightDate_; }
    const std::shared_ptr<UIFltTiny>& schedule() const { return schedule_; }
    const std::shared_ptr<UIFltTiny>& actual() const { return actual_; }
    const std::shared_ptr<UIFltTiny>& terminal() const { return terminal_; }
    const std::shared_ptr<UIFltTiny>& gate() const { return gate_; }
    const std::shared_ptr<UIFltTiny>& baggage() const { return baggage_; }

    void addAirport(Caption caption, Value value);
    void addFlightDate(Caption caption, Value value);
    void addSchedule(Caption caption, Value value, Value remark);
    void addActual(Caption caption, Value value, Value remark);
    void addTerminal(Caption caption, Value value);
    void addGate(Caption caption, Value value);
    void addBaggage(Caption caption, Value value);
    // Empties every value; captions and the baggage row's visibility stay.
    void resetFld();

  protected:
    void layoutSubviews() override;

  private:
    enum class Kind { Plain, Break, Timed, Baggage };
    // One row's update waiting for the main thread.
    struct Update {
        Kind kind;
        Caption caption;
        Value value;
        Value remark;
    };
    struct Pending;
    // Records the row's update, merged with one already waiting, and makes
    // sure a pass on the main queue will apply it.
    void queue(UIFltTiny& row, Update update);
    static void apply(UIFltSchedule& card, UIFltTiny& row, const Update& update);

    std::shared_ptr<UIFltTiny> airport_, flightDate_, schedule_, actual_, terminal_, gate_, baggage_;
    std::shared_ptr<Pending> pending_;
};

} // namespace morvane
