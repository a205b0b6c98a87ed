#pragma once
// UIFltSearch: the flight search screen: a header-and-grid composite as its
// background, the search box over it, and, once an answer comes, the flight
// display over a dimmed screen. The kit looks nothing up: the application
// gets the typed number, fetches the flight and pushes its fields in, from
// any thread; the first airport it pushes brings the display up.
//
//   screen->watchSearch([screen, service](const std::string& number, const NodePtr&) {
//       screen->resetFld();                         // the busy indicator turns
//       service.lookUp(number, [screen](const Flight& f) {   // any thread
//           screen->addFlightHeader(f.number, f.airline, f.status);
//           screen->addAirport("D", "From", f.from);          // shows the display
//           ...
//       });
//   });
//
// The busy indicator stops by itself 15 seconds after a search began (an
// answer that never comes); "CLOSE" or a tap on the dimmed screen put the
// display away. Threads: the field operations and showProgress may be called
// from any thread; the rest is main thread only.

#include <morvane/flight/UIFltDisplay.h>
#include <morvane/flight/UISearchFlt.h>
#include <morvane/lists/UITblHdrAll.h>
#include <morvane/ui/controls/ActivityIndicator.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace morvane {

class UIFltSearch : public ui::View {
  public:
    using Caption = UIFltDisplay::Caption;
    // How long the busy indicator turns without an answer.
    static constexpr double kSearchTimeout = 15;

    explicit UIFltSearch(const gfx::Rect& frame = {});
    static std::shared_ptr<UIFltSearch> make(const gfx::Rect& frame = {});

    const std::shared_ptr<ui::ActivityIndicator>& indicator() const { return indicator_; }
    const std::shared_ptr<UISearchFlt>& searchFltUI() const { return searchFltUI_; }
    const std::shared_ptr<UIFltDisplay>& fltDisplayUI() const { return fltDisplayUI_; }
    const std::shared_ptr<ui::View>& viewUI() const { return viewUI_; }
    const std::shared_ptr<UITblHdrAll>& tblHdrUI() const { return tblHdrUI_; }

    void watchSearch(UISearchFlt::SearchCB callback);
    // A search begins: the display goes, the indicator turns, the fields empty.
    void resetFld();
    void showProgress(bool busy);

    void addFlightHeader(Value title, Value airline, Value status);
    // Also brings the display up (and stops the indicator).
    void addAirport(std::string_view side, Caption caption, Value value);
    void addFlightDate(std::string_view side, Caption caption, Value value);
    void addSchedule(std::string_view side, Caption caption, Value value, Value remark);
    void addActual(std::string_view side, Caption caption, Value value, Value remark);
    void addTerminal(std::string_view side, Caption caption, Value value);
    void addGate(std::string_view side, Caption caption, Value value);
    void addBaggage(std::string_view side, Caption caption, Value value);

    // A tap on the dimmed screen: the display goes.
    void tapAction();

    void addHeaderImage(std::optional<std::string_view> name, std::optional<std::string_view> stamp);
    void addHeaderTitle(std::string_view text);
    void addHeaderSubtitle(std::string_view text);
    void setBackgroundColor(const gfx::Color& color) override;
    // The height of "Sample Text" in the system font (once).
    static double getTextHeight();

    static std::optional<double> textToDate(std::string_view text);
    static std::string getFDate(double date);
    static bool isValidDateFormat(std::string_view text, std::string_view form);

  protected:
    void layoutSubviews() override;

  private:
    void watchClose();
    void hideResult();
    // Runs the work on the main queue while the screen lives.
    void onMain(std::function<void(UIFltSearch&)> work);

    std::shared_ptr<ui::ActivityIndicator> indicator_;
    std::shared_ptr<UISearchFlt> searchFltUI_;
    std::shared_ptr<UIFltDisplay> fltDisplayUI_;
    std::shared_ptr<ui::View> viewUI_;
    std::shared_ptr<UITblHdrAll> tblHdrUI_;
};

} // namespace morvane
