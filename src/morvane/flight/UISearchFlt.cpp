#include <morvane/flight/UISearchFlt.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/flight/UIFltTiny.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/sys/Queue.h>

namespace morvane {

UISearchFlt::UISearchFlt(const gfx::Rect& frame) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double s = gfx::Font::systemFontSize();
    txtZB_ = ZBTxt::initWithName("Flight Number", "airplane2", false);
    addSubview(txtZB_);
    title_ = std::make_shared<ui::Label>();
    title_->setTextColor(gfx::Color::whiteColor());
    title_->setFont(gfx::Font::systemFont(0.75 * s));
    title_->setTextAlignment(gfx::TextAlignment::Center);
    title_->setText("Example: 'AS 1144'");
    addSubview(title_);
    takePhotoBtn_ = std::make_shared<ui::Button>();
    takePhotoBtn_->setTitle("Search");
    takePhotoBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(0.9 * s));
    takePhotoBtn_->setBackgroundColor(gfx::Color::blackColor());
    takePhotoBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { menuAction(); });
    addSubview(takePhotoBtn_);
}

UISearchFlt::~UISearchFlt() {
    // The button may outlive the box: its action must not reach back.
    takePhotoBtn_->removeActions(ui::ControlEvent::TouchUpInside);
}

void UISearchFlt::watchSearch(SearchCB callback) {
    MORVANE_ASSERT_MAIN_THREAD();
    searchCB_ = std::move(callback);
}

void UISearchFlt::menuAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!searchCB_) return;
    DispatchGuard guard(*this);
    txtZB_->quit();
    const SearchCB call = searchCB_;
    call(txtZB_->text(), Node::make());
}

double UISearchFlt::getTextHeight() {
    return 2.8 *
           gfx::TextMetrics::size("Sample Text", gfx::Font::systemFont(gfx::Font::systemFontSize())).height;
}

double UISearchFlt::bottomOf(const ui::View& view, double offset) {
    return view.frame().y + view.frame().height + offset;
}

double UISearchFlt::heightOf(const ui::View& view, double offset) const {
    return bounds().height - bottomOf(view, offset);
}

void UISearchFlt::addBorder(ui::View& view, double width) {
    UIFltTiny::addBorder(view, width);
}

void UISearchFlt::layoutSubviews() {
    const double w = bounds().width, h = bounds().height;
    txtZB_->setFrame({0.1 * w, 0.05 * h, 0.8 * w, 0.4 * h});
    title_->setFrame({0.1 * w, 0.46 * h, 0.8 * w, 0.2 * h});
    takePhotoBtn_->setFrame({0.3 * w, 0.7 * h, 0.4 * w, 0.25 * h});
    takePhotoBtn_->layer().setCornerRadius(0.125 * h);
    layer().setCornerRadius(10);
    addBorder(*this, 1);
}

} // namespace morvane
