#include <morvane/flight/UIFltDisplay.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Colors.h>

namespace morvane {

namespace {

std::shared_ptr<ui::Label> whiteLabel(const gfx::Font& font, gfx::TextAlignment alignment) {
    auto label = std::make_shared<ui::Label>();
    label->setTextColor(gfx::Color::whiteColor());
    label->setFont(font);
    label->setTextAlignment(alignment);
    return label;
}

} // namespace

UIFltDisplay::UIFltDisplay(const gfx::Rect& frame) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double s = gfx::Font::systemFontSize();
    title_ = whiteLabel(gfx::Font::boldSystemFont(1.5 * s), gfx::TextAlignment::Left);
    airline_ = whiteLabel(gfx::Font::systemFont(s), gfx::TextAlignment::Left);
    status_ = whiteLabel(gfx::Font::boldSystemFont(0.5 * s), gfx::TextAlignment::Right);
    cimg_ = std::make_shared<ui::ImageView>();
    cimg_->setContentMode(gfx::ContentMode::AspectFit);
    cimg_->setImage(ResourcePictures::named("airplane2w", {64, 64}));
    departureUI_ = std::make_shared<UIFltSchedule>();
    arriveUI_ = std::make_shared<UIFltSchedule>();
    closeBtn_ = std::make_shared<ui::Button>();
    closeBtn_->setTitle("CLOSE");
    closeBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(s));
    closeBtn_->setBackgroundColor(gfx::Color::blackColor());
    closeBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { closeAction(); });
    for (const std::shared_ptr<ui::View>& child : std::initializer_list<std::shared_ptr<ui::View>>{
             title_, airline_, status_, cimg_, departureUI_, arriveUI_, closeBtn_})
        addSubview(child);
    setBackgroundColor(gfx::Color::blackColor());
    setClipsToBounds(true);
}

UIFltDisplay::~UIFltDisplay() {
    // The bar may outlive the panel: its action must not reach back.
    closeBtn_->removeActions(ui::ControlEvent::TouchUpInside);
}

void UIFltDisplay::addFlightHeader(Value title, Value airline, Value status) {
    std::weak_ptr<ui::View> weak = weak_from_this();
    sys::Queue::main().async(
        [weak, title = std::move(title), airline = std::move(airline), status = std::move(status)] {
            auto self = std::static_pointer_cast<UIFltDisplay>(weak.lock());
            if (!self) return;
            if (const std::string* t = title.text()) self->title_->setText(*t);
            if (const std::string* a = airline.text()) self->airline_->setText(*a);
            if (const std::string* s = status.text()) self->status_->setText(*s);
        });
}

// The cards queue their own work on the main queue, in the order called.
void UIFltDisplay::addAirport(std::string_view side, Caption caption, Value value) {
    card(side).addAirport(std::move(caption), std::move(value));
}
void UIFltDisplay::addFlightDate(std::string_view side, Caption caption, Value value) {
    card(side).addFlightDate(std::move(caption), std::move(value));
}
void UIFltDisplay::addSchedule(std::string_view side, Caption caption, Value value, Value remark) {
    card(side).addSchedule(std::move(caption), std::move(value), std::move(remark));
}
void UIFltDisplay::addActual(std::string_view side, Caption caption, Value value, Value remark) {
    card(side).addActual(std::move(caption), std::move(value), std::move(remark));
}
void UIFltDisplay::addTerminal(std::string_view side, Caption caption, Value value) {
    card(side).addTerminal(std::move(caption), std::move(value));
}
void UIFltDisplay::addGate(std::string_view side, Caption caption, Value value) {
    card(side).addGate(std::move(caption), std::move(value));
}
void UIFltDisplay::addBaggage(std::string_view side, Caption caption, Value value) {
    card(side).addBaggage(std::move(caption), std::move(value));
}

void UIFltDisplay::resetFld() {
    departureUI_->resetFld();
    arriveUI_->resetFld();
}

void UIFltDisplay::watchClose(CloseCB callback) {
    MORVANE_ASSERT_MAIN_THREAD();
    closeCB_ = std::move(callback);
}

void UIFltDisplay::closeAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!closeCB_) return;
    DispatchGuard guard(*this);
    const CloseCB call = closeCB_;
    call(true);
}

void UIFltDisplay::setBackgroundColor(const gfx::Color& color) {
    ui::View::setBackgroundColor(color);
    departureUI_->setBackgroundColor(Colors::darkerBy(color, 0.05));
    arriveUI_->setBackgroundColor(Colors::darkerBy(color, 0.05));
}

void UIFltDisplay::addBorder(ui::View& view, double width) {
    UIFltTiny::addBorder(view, width);
}

double UIFltDisplay::getTextHeight() {
    return 2 *
           gfx::TextMetrics::size("Sample Text", gfx::Font::systemFont(gfx::Font::systemFontSize())).height;
}

void UIFltDisplay::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, t = getTextHeight();
    cimg_->setFrame({w - 1.4 * t, 0.1 * t, t, t});
    title_->setFrame({0.025 * w, 0, 0.8 * w, 0.8 * t});
    airline_->setFrame({0.025 * w, 0.8 * t, 0.8 * w, 0.5 * t});
    status_->setFrame({0.505 * w, t, 0.482 * w, 0.5 * t});
    departureUI_->setFrame({0.015 * w, 1.5 * t, 0.482 * w, h - 2.7 * t});
    arriveUI_->setFrame({0.505 * w, 1.5 * t, 0.482 * w, h - 2.7 * t});
    closeBtn_->setFrame({0, h - t, w, t});
    layer().setCornerRadius(10);
}

} // namespace morvane
