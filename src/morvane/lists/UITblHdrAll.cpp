#include <morvane/lists/UITblHdrAll.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/components/MainQueue.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>

#include <cmath>
#include <utility>
#include <vector>

namespace morvane {

namespace {
constexpr const char* kWatchName = "UITblHdrAll";
} // namespace

UITblHdrAll::UITblHdrAll() : UITblHdrAll(Form::List, gfx::Rect{}) {}

UITblHdrAll::UITblHdrAll(const gfx::Rect& frame) : UITblHdrAll(Form::List, frame) {}

UITblHdrAll::UITblHdrAll(Form form, const gfx::Rect& frame) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    headerUI_ = std::make_shared<UIHeader>();
    addSubview(headerUI_);
    if (form == Form::List) {
        tblUI_ = std::make_shared<UITbl>();
        addSubview(tblUI_);
    } else {
        ctblUI_ = std::make_shared<UICTbl>();
        addSubview(ctblUI_);
    }
    ui::View::setBackgroundColor(gfx::Color::clearColor());
    watchHeader();
}

std::shared_ptr<UITblHdrAll> UITblHdrAll::initTbl() {
    return std::make_shared<UITblHdrAll>(Form::Grid, gfx::Rect{});
}

UITblHdrAll::~UITblHdrAll() {
    // The header may outlive the composite (anyone can hold it); its data
    // callback must not reach a composite that is gone.
    headerUI_->watch(kWatchName, {}, {});
}

template <class Work> void UITblHdrAll::forRows(Work work) {
    // Copies: the work runs owner callbacks, which may release the composite.
    const auto list = tblUI_;
    const auto grid = ctblUI_;
    if (list) work(*list);
    if (grid) work(*grid);
}

// ---- Wiring -------------------------------------------------------------------

void UITblHdrAll::watchHeader() {
    MORVANE_ASSERT_MAIN_THREAD();
    // The header is a part of this composite and is told to forget this
    // callback when the composite goes, so the plain pointer stays valid.
    headerUI_->watch(
        kWatchName, [](bool) {}, [this](const NodePtr& data) { dataChosen(data); });
}

void UITblHdrAll::dataChosen(const NodePtr& data) {
    DispatchGuard guard(*this);
    const std::uint64_t choice = ++choice_;
    if (data && data->has("api") && flightCB_) {
        const FlightCB flight = flightCB_;
        std::weak_ptr<UITblHdrAll> weak = std::static_pointer_cast<UITblHdrAll>(weak_from_this().lock());
        flight(data, [weak, choice](const NodePtr& rows) {
            postToMain(weak, [choice, rows](UITblHdrAll& composite) {
                if (composite.choice_ != choice) {
                    sys::Log::platform(
                        "UITblHdrAll: an answer for an earlier data set arrived late; dropped");
                    return;
                }
                composite.updateTbl(rows);
            });
        });
        return;
    }
    updateTbl(data);
}

void UITblHdrAll::updateTbl(const NodePtr& rows) {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    // The values are taken first: refreshing runs the owner's callbacks,
    // which may change the Node.
    std::vector<Value> values;
    if (rows) {
        values.reserve(rows->size());
        for (const auto& entry : *rows)
            values.push_back(entry.second);
    }
    forRows([&values](auto& view) {
        view.clear();
        for (const Value& value : values)
            view.adData(value);
        view.refresh();
    });
}

// ---- Forwarded to the rows view ------------------------------------------------------

void UITblHdrAll::cfg(const KeysCB& cfg, const KeysCB& header, const KeysCB& body, const KeysCB& price,
                      const FlagCB& sort, const KeysCB& sortBy, const FlagCB& ascending,
                      const SizeCB& cellHeight, const SizeCB& numOfCol, const FlagCB& checkBox,
                      const SelectionCB& select, const FlagCB& inckey) {
    forRows([&](auto& view) {
        view.cfg(cfg, header, body, price, sort, sortBy, ascending, cellHeight, numOfCol, checkBox, select,
                 inckey);
    });
}

void UITblHdrAll::cfg(const ListConfig& config) {
    forRows([&config](auto& view) { view.cfg(config); });
}

void UITblHdrAll::watchTbl(std::optional<std::string_view> name, SelectCB selected, PopulateCB populate,
                           RefreshCB refresh) {
    forRows([&](auto& view) { view.watchTbl(name, selected, populate, refresh); });
}

void UITblHdrAll::watchSwipe(std::string title, const gfx::Color& color, SwipeCB swipe) {
    if (const auto list = tblUI_) {
        list->watchSwipe(std::move(title), color, std::move(swipe));
    } else if (!std::exchange(swipeIgnoredLogged_, true)) {
        sys::Log::platform("UITblHdrAll: swipe actions need the list form; ignored on the grid");
    }
}

void UITblHdrAll::watchSwipeLeft(std::string title, const gfx::Color& color, SwipeCB swipe) {
    if (const auto list = tblUI_) {
        list->watchSwipeLeft(std::move(title), color, std::move(swipe));
    } else if (!std::exchange(swipeIgnoredLogged_, true)) {
        sys::Log::platform("UITblHdrAll: swipe actions need the list form; ignored on the grid");
    }
}

void UITblHdrAll::watchTranslate(const TranslateCB& translate) {
    forRows([&translate](auto& view) { view.watchTranslate(translate); });
    headerUI_->watchTranslate(translate);
}

void UITblHdrAll::watchFlight(FlightCB flight) {
    flightCB_ = std::move(flight);
}

// ---- Forwarded to the header -----------------------------------------------------------
// Each holds the header for the call: its callbacks may release the composite.

void UITblHdrAll::watchSubtitle(long index, UIHeader::SubtitleCB callback) {
    const auto header = headerUI_;
    header->watchSubtitle(index, std::move(callback));
}

void UITblHdrAll::watchHdrBack(std::optional<std::string> title, UIHeader::BackCB callback) {
    headerUI_->watchHdrBack(std::move(title), std::move(callback));
}

void UITblHdrAll::watchHdr(std::string_view name, UIHeader::ClickCB click, UIHeader::DataCB data) {
    headerUI_->watch(name, std::move(click), std::move(data));
}

void UITblHdrAll::addHeaderImage(std::optional<std::string_view> name,
                                 std::optional<std::string_view> stamp) {
    headerUI_->addImage(name, stamp);
}

void UITblHdrAll::addHeaderTitle(std::string_view text) {
    headerUI_->addTitle(text);
}

void UITblHdrAll::addHeaderSubtitle(std::string_view text) {
    headerUI_->addSubtitle(text);
}

void UITblHdrAll::addDataWhenSelectHeader(std::string name, Value data) {
    headerUI_->addDataWhenSelect(std::move(name), std::move(data));
}

NodePtr UITblHdrAll::selectedItemGet(std::string_view name) const {
    return headerUI_->findObject(name);
}

NodePtr UITblHdrAll::currentSel(std::string_view name) {
    const auto header = headerUI_;
    return header->addCurentSel(name);
}

void UITblHdrAll::clearTbl() {
    headerUI_->clearCurentSel();
}

void UITblHdrAll::clearHeader() {
    ++choice_;
    headerUI_->clear();
}

void UITblHdrAll::refreshHeader() {
    const auto header = headerUI_;
    header->refresh();
}

void UITblHdrAll::cleanUp() {
    DispatchGuard guard(*this);
    clearHeader();
    clearTbl();
    forRows([](auto& view) { view.refresh(); });
}

// ---- Appearance ------------------------------------------------------------------------

void UITblHdrAll::setBackgroundColor(const gfx::Color& color) {
    DispatchGuard guard(*this);
    ui::View::setBackgroundColor(gfx::Color::clearColor());
    headerUI_->setBackgroundColor(color);
    forRows([&color](auto& view) {
        view.setBackgroundColor(color);
        view.refresh();
    });
}

double UITblHdrAll::getTextHeight() {
    return 7 *
           gfx::TextMetrics::size("Sample Text", gfx::Font::systemFont(gfx::Font::systemFontSize())).height;
}

void UITblHdrAll::addBorder(ui::View& view, double width) {
    UIHeader::addBorder(view, width);
}

void UITblHdrAll::layoutSubviews() {
    const gfx::Size size = bounds().size();
    const double t = getTextHeight();
    headerUI_->setFrame({0, 0, size.width, std::floor(t)});
    const gfx::Rect rows{0, t, size.width, size.height - 1.02 * t};
    forRows([&rows](auto& view) { view.setFrame(rows); });
    ui::View::layoutSubviews();
}

} // namespace morvane
