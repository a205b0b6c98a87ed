#pragma once
// UITblHdrAll: a header bar above a list or a grid, wired so that the data
// set chosen in the header becomes the rows below. Screens use it as one
// unit; apart from the wiring and the layout it only routes calls to its
// three parts.
//
//   auto menus = UITblHdrAll::initTbl(); // grid form; UITblHdrAll(frame) is the list form
//   menus->cfg({.header = [](auto& keys) { keys = {"name"}; },
//               .numOfCol = [](float& columns) { columns = 2; }});
//   menus->watchTbl("menus", onSelect, onPopulate, {});
//   menus->addDataWhenSelectHeader("Menu-Breakfast", breakfast); // a Node of row Nodes
//   menus->addDataWhenSelectHeader("Menu-Dinner", dinner);
//   menus->refreshHeader(); // the first set's rows appear; each tap on the header moves on
//
// A data set holding an "api" entry is fetched instead of loaded when a
// flight callback is set (watchFlight): the callback gets the set and a
// completion, which it may call on any thread with the rows.
//
// Decisions where the kit's behaviour leaves room:
// - An answer that arrives after the header has handed over another data set,
//   or after clearHeader or cleanUp, is dropped with one log line: the rows
//   always belong to the set the header shows. A completion called twice
//   while its set is still the current one loads twice.
// - Swipe registrations on the grid form are ignored with one log line.
// - A data set that is no Node loads no rows; its values that are no Node
//   are added like any row and shown blank by the rows view.
//
// Every callback may call any operation of the composite or release it.
// Threads: main thread only, apart from the flight completion (any thread,
// any number of times, also after the composite is gone).

#include <morvane/components/ListConfig.h>
#include <morvane/components/Translation.h>
#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/lists/UICTbl.h>
#include <morvane/lists/UIHeader.h>
#include <morvane/lists/UITbl.h>
#include <morvane/model/Forward.h>
#include <morvane/model/Value.h>
#include <morvane/ui/core/View.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class UITblHdrAll : public ui::View {
  public:
    // The flight callback's completion: the rows (a Node whose values are row Nodes).
    using FlightCompletion = std::function<void(const NodePtr& rows)>;
    // flight: the header's data set and the completion to answer it with.
    using FlightCB = std::function<void(const NodePtr& data, FlightCompletion completion)>;
    using SelectCB = UITbl::SelectCB;
    using PopulateCB = UITbl::PopulateCB;
    using RefreshCB = UITbl::RefreshCB;
    using SwipeCB = UITbl::SwipeCB;
    using KeysCB = ListConfig::KeysCB;
    using FlagCB = ListConfig::FlagCB;
    using SizeCB = ListConfig::SizeCB;
    using SelectionCB = ListConfig::SelectionCB;

    enum class Form { List, Grid };

    // The list form with a zero frame.
    UITblHdrAll();
    // The list form.
    explicit UITblHdrAll(const gfx::Rect& frame);
    UITblHdrAll(Form form, const gfx::Rect& frame);
    // The grid form with a zero frame.
    static std::shared_ptr<UITblHdrAll> initTbl();
    ~UITblHdrAll() override;

    // ---- Parts -----------------------------------------------------------------------
    const std::shared_ptr<UIHeader>& headerUI() const { return headerUI_; }
    // The list (list form) or null.
    const std::shared_ptr<UITbl>& tblUI() const { return tblUI_; }
    // The grid (grid form) or null.
    const std::shared_ptr<UICTbl>& ctblUI() const { return ctblUI_; }
    const FlightCB& flightCB() const { return flightCB_; }

    // ---- Wiring ------------------------------------------------------------------------
    // Registers with the header under "UITblHdrAll" (done by the constructors).
    void watchHeader();
    // Empties the rows view, adds every top-level value of the Node as a
    // row and refreshes; a null Node just empties it.
    void updateTbl(const NodePtr& rows);

    // ---- Forwarded to the rows view ------------------------------------------------------
    void cfg(const KeysCB& cfg, const KeysCB& header, const KeysCB& body, const KeysCB& price,
             const FlagCB& sort, const KeysCB& sortBy, const FlagCB& ascending, const SizeCB& cellHeight,
             const SizeCB& numOfCol, const FlagCB& checkBox, const SelectionCB& select, const FlagCB& inckey);
    void cfg(const ListConfig& config);
    void watchTbl(std::optional<std::string_view> name, SelectCB selected, PopulateCB populate,
                  RefreshCB refresh);
    // List form only.
    void watchSwipe(std::string title, const gfx::Color& color, SwipeCB swipe);
    void watchSwipeLeft(std::string title, const gfx::Color& color, SwipeCB swipe);
    // The rows view's and the header's.
    void watchTranslate(const TranslateCB& translate);
    void watchFlight(FlightCB flight);

    // ---- Forwarded to the header -----------------------------------------------------------
    void watchSubtitle(long index, UIHeader::SubtitleCB callback);
    void watchHdrBack(std::optional<std::string> title, UIHeader::BackCB callback);
    void watchHdr(std::string_view name, UIHeader::ClickCB click, UIHeader::DataCB data);
    void addHeaderImage(std::optional<std::string_view> name, std::optional<std::string_view> stamp);
    void addHeaderTitle(std::string_view text);
    void addHeaderSubtitle(std::string_view text);
    void addDataWhenSelectHeader(std::string name, Value data);
    NodePtr selectedItemGet(std::string_view name) const;
    NodePtr currentSel(std::string_view name);
    // The header's current selection is forgotten (the rows stay).
    void clearTbl();
    void clearHeader();
    void refreshHeader();
    // clearHeader, clearTbl, then the rows view refreshes.
    void cleanUp();

    // ---- Appearance ----------------------------------------------------------------------
    // The composite stays clear; the header and the rows view take the colour.
    void setBackgroundColor(const gfx::Color& color) override;
    // The composite's unit: 7 x the height of "Sample Text" in the system font.
    static double getTextHeight();
    static void addBorder(ui::View& view, double width);

  protected:
    void layoutSubviews() override;

  private:
    void dataChosen(const NodePtr& data);
    template <class Work> void forRows(Work work);

    std::shared_ptr<UIHeader> headerUI_;
    std::shared_ptr<UITbl> tblUI_;
    std::shared_ptr<UICTbl> ctblUI_;
    FlightCB flightCB_;
    // Moves with every data set the header hands over, so that a late answer
    // for an earlier one can be told apart.
    std::uint64_t choice_ = 0;
    bool swipeIgnoredLogged_ = false;
};

} // namespace morvane
