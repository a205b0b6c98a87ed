#include <morvane/flight/UIFltSearch.h>

#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/TapGestureRecognizer.h>
#include <morvane/util/Dates.h>

namespace morvane {

namespace {

// The screen's parts that work from other threads reaches, held weakly: a
// screen released meanwhile is simply left alone.
struct Parts {
    std::weak_ptr<UIFltDisplay> display;
    std::weak_ptr<ui::View> veil;
    std::weak_ptr<ui::ActivityIndicator> indicator;
};

Parts partsOf(const UIFltSearch& screen) {
    return {screen.fltDisplayUI(), screen.viewUI(), screen.indicator()};
}

void hide(const Parts& parts) {
    if (auto display = parts.display.lock()) display->setHidden(true);
    if (auto veil = parts.veil.lock()) veil->setHidden(true);
}

void progress(const Parts& parts, bool busy) {
    auto indicator = parts.indicator.lock();
    if (!indicator) return;
    indicator->setHidden(!busy);
    if (busy)
        indicator->startAnimating();
    else
        indicator->stopAnimating();
    if (auto parent = indicator->superview()) parent->bringSubviewToFront(indicator.get());
    if (!busy) return;
    // Each search stops its own indicator in the end, whatever came since.
    sys::Queue::main().after(UIFltSearch::kSearchTimeout, [parts] { progress(parts, false); });
}

} // namespace

UIFltSearch::UIFltSearch(const gfx::Rect& frame) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    tblHdrUI_ = UITblHdrAll::initTbl();
    addSubview(tblHdrUI_);
    searchFltUI_ = std::make_shared<UISearchFlt>();
    addSubview(searchFltUI_);
    viewUI_ = std::make_shared<ui::View>();
    viewUI_->setBackgroundColor(gfx::Color::blackColor().withAlpha(0.5));
    viewUI_->setHidden(true);
    addSubview(viewUI_);
    fltDisplayUI_ = std::make_shared<UIFltDisplay>();
    fltDisplayUI_->setHidden(true);
    addSubview(fltDisplayUI_);
    indicator_ = std::make_shared<ui::ActivityIndicator>(ui::ActivityIndicator::Style::Large);
    indicator_->setColor(gfx::Color::whiteColor());
    indicator_->setHidden(true);
    addSubview(indicator_);
    const Parts parts = partsOf(*this);
    viewUI_->addGestureRecognizer(
        ui::TapGestureRecognizer::create([parts](ui::GestureRecognizer&) { hide(parts); }));
    watchClose();
}

std::shared_ptr<UIFltSearch> UIFltSearch::make(const gfx::Rect& frame) {
    return std::make_shared<UIFltSearch>(frame);
}

void UIFltSearch::watchClose() {
    const Parts parts = partsOf(*this);
    fltDisplayUI_->watchClose([parts](bool) { hide(parts); });
}

void UIFltSearch::onMain(std::function<void(UIFltSearch&)> work) {
    std::weak_ptr<ui::View> weak = weak_from_this();
    sys::Queue::main().async([weak, work = std::move(work)] {
        if (auto self = std::static_pointer_cast<UIFltSearch>(weak.lock())) work(*self);
    });
}

void UIFltSearch::watchSearch(UISearchFlt::SearchCB callback) {
    searchFltUI_->watchSearch(std::move(callback));
}

void UIFltSearch::resetFld() {
    MORVANE_ASSERT_MAIN_THREAD();
    hideResult();
    showProgress(true);
    fltDisplayUI_->resetFld();
}

void UIFltSearch::showProgress(bool busy) {
    const Parts parts = partsOf(*this);
    sys::Queue::main().async([parts, busy] { progress(parts, busy); });
}

void UIFltSearch::hideResult() {
    hide(partsOf(*this));
}

void UIFltSearch::tapAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    hideResult();
}

void UIFltSearch::addFlightHeader(Value title, Value airline, Value status) {
    fltDisplayUI_->addFlightHeader(std::move(title), std::move(airline), std::move(status));
}

void UIFltSearch::addAirport(std::string_view side, Caption caption, Value value) {
    const Parts parts = partsOf(*this);
    sys::Queue::main().async([parts] {
        progress(parts, false);
        if (auto display = parts.display.lock()) display->setHidden(false);
        if (auto veil = parts.veil.lock()) veil->setHidden(false);
    });
    fltDisplayUI_->addAirport(side, std::move(caption), std::move(value));
}

void UIFltSearch::addFlightDate(std::string_view side, Caption caption, Value value) {
    fltDisplayUI_->addFlightDate(side, std::move(caption), std::move(value));
}
void UIFltSearch::addSchedule(std::string_view side, Caption caption, Value value, Value remark) {
    fltDisplayUI_->addSchedule(side, std::move(caption), std::move(value), std::move(remark));
}
void UIFltSearch::addActual(std::string_view side, Caption caption, Value value, Value remark) {
    fltDisplayUI_->addActual(side, std::move(caption), std::move(value), std::move(remark));
}
void UIFltSearch::addTerminal(std::string_view side, Caption caption, Value value) {
    fltDisplayUI_->addTerminal(side, std::move(caption), std::move(value));
}
void UIFltSearch::addGate(std::string_view side, Caption caption, Value value) {
    fltDisplayUI_->addGate(side, std::move(caption), std::move(value));
}
void UIFltSearch::addBaggage(std::string_view side, Caption caption, Value value) {
    fltDisplayUI_->addBaggage(side, std::move(caption), std::move(value));
}

void UIFltSearch::addHeaderImage(std::optional<std::string_view> name,
                                 std::optional<std::string_view> stamp) {
    tblHdrUI_->addHeaderImage(name, stamp);
}
void UIFltSearch::addHeaderTitle(std::string_view text) {
    tblHdrUI_->addHeaderTitle(text);
}
void UIFltSearch::addHeaderSubtitle(std::string_view text) {
    tblHdrUI_->addHeaderSubtitle(text);
}

void UIFltSearch::setBackgroundColor(const gfx::Color& color) {
    ui::View::setBackgroundColor(color);
    tblHdrUI_->setBackgroundColor(color);
    fltDisplayUI_->setBackgroundColor(color);
}

double UIFltSearch::getTextHeight() {
    return gfx::TextMetrics::size("Sample Text", gfx::Font::systemFont(gfx::Font::systemFontSize())).height;
}

std::optional<double> UIFltSearch::textToDate(std::string_view text) {
    return Dates::textToDate(text);
}
std::string UIFltSearch::getFDate(double date) {
    return Dates::getFDate(date);
}
bool UIFltSearch::isValidDateFormat(std::string_view text, std::string_view form) {
    return Dates::isValidDateFormat(text, form);
}

void UIFltSearch::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, t = getTextHeight();
    viewUI_->setFrame({0, 0, w, h});
    indicator_->setFrame({0, 0, w, h});
    tblHdrUI_->setFrame({0, 0, w, h});
    searchFltUI_->setFrame({0.1 * w, 0.25 * h, 0.8 * w, 8 * t});
    fltDisplayUI_->setFrame({0.02 * w, 0.25 * h, 0.96 * w, 15 * t});
}

} // namespace morvane
