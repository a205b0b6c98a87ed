#include <morvane/forms/UIProfile.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/components/MainQueue.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/gfx/Transform.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Dates.h>
#include <morvane/util/Txt.h>

#include <atomic>
#include <cmath>

namespace morvane {

namespace {

double fontSize() {
    return gfx::Font::systemFontSize();
}

} // namespace

UIProfile::UIProfile(const gfx::Rect& frame) : UMEdit(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double f = fontSize();
    myData_ = Node::make();

    imageZB_ = std::make_shared<ZBImage>();
    addSubview(imageZB_);

    nameLbl_ = std::make_shared<ui::Label>();
    nameLbl_->setTextAlignment(gfx::TextAlignment::Center);
    nameLbl_->setTextColor(gfx::Color::whiteColor());
    nameLbl_->setFont(gfx::Font::boldSystemFont(0.9 * f));
    addSubview(nameLbl_);

    lineLbl_ = std::make_shared<ui::Label>();
    lineLbl_->setBackgroundColor(gfx::Color::whiteColor());
    addSubview(lineLbl_);

    backBtn_ = std::make_shared<ui::Button>();
    backBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(1.5 * f));
    backBtn_->setTitle("\u2190");
    backBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { backAction(); });
    addSubview(backBtn_);

    takePhotoBtn_ = std::make_shared<ui::Button>();
    const double t = getTextHeight();
    takePhotoBtn_->setImage(ResourcePictures::named("gallery", {t, t}));
    takePhotoBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { takePhotoAction(); });
    addSubview(takePhotoBtn_);
    takePhotoBtn_->setHidden(true);

    // The card bounces even when its values fit, so a pull always reaches
    // the refresh control.
    setAlwaysBounceVertical(true);
    setScrollEnabled(true);
    setUserInteractionEnabled(true);
    auto refreshControl = std::make_shared<ui::RefreshControl>();
    refreshControl->addAction(ui::ControlEvent::ValueChanged, [this](ui::Control& control) {
        refresh(static_cast<ui::RefreshControl&>(control));
    });
    setRefreshControl(refreshControl);
}

UIProfile::~UIProfile() {
    // Buttons and the refresh control may outlive the card in someone's hands.
    backBtn_->removeActions(ui::ControlEvent::TouchUpInside);
    takePhotoBtn_->removeActions(ui::ControlEvent::TouchUpInside);
    if (const auto& control = refreshControl()) control->removeActions(ui::ControlEvent::ValueChanged);
}

template <class Callback, class... Args> void UIProfile::report(const Callback& callback, Args&&... args) {
    if (!callback) return;
    DispatchGuard guard(*this);
    const Callback call = callback;
    call(std::forward<Args>(args)...);
}

// ---- Filling ------------------------------------------------------------------------

std::string UIProfile::processName(std::string_view text) {
    return Txt::splitBy(Txt::splitBy(text, "-"), "/");
}

void UIProfile::addName(std::string_view text) {
    MORVANE_ASSERT_MAIN_THREAD();
    myData_->set("title", Value(text));
    const std::string shown = processName(text);
    nameLbl_->setText(withoutTranslateMarkers(shown));
    if (!isTranslatable(shown) || !translateCB_) return;
    DispatchGuard guard(*this);
    const TranslateCB translate = translateCB_;
    std::weak_ptr<UIProfile> weak = std::static_pointer_cast<UIProfile>(weak_from_this().lock());
    translate(shown, [weak](const std::string& translated) {
        postToMain(weak, [translated](UIProfile& card) { card.nameLbl_->setText(translated); });
    });
}

void UIProfile::addKeyCode(std::string_view key) {
    myData_->set("key", Value(key));
    myKey_ = key;
}

std::shared_ptr<ui::Label> UIProfile::makeValueLabel() {
    auto label = std::make_shared<ui::Label>();
    label->setTextAlignment(gfx::TextAlignment::Center);
    label->setTextColor(gfx::Color::whiteColor());
    label->setNumberOfLines(10);
    label->setFont(gfx::Font::systemFont(0.9 * fontSize()));
    return label;
}

void UIProfile::addVal(const Value& value, std::string_view field) {
    MORVANE_ASSERT_MAIN_THREAD();
    std::string text;
    if (value.isNumber())
        text = value.toText();
    else if (value.isText())
        text = *value.text();
    else
        text = kPlaceholder;
    if (myLbl_.size() <= myLblData_.size()) {
        auto label = makeValueLabel();
        addSubview(label);
        myLbl_.push_back(std::move(label));
    }
    NodePtr entry = Node::make();
    entry->set("field", Value(field));
    entry->set("data", Value(text));
    myLblData_.push_back(std::move(entry));
    myLbl_[myLblData_.size() - 1]->setText(withoutTranslateMarkers(text));
    setNeedsLayout();
}

void UIProfile::clear() {
    MORVANE_ASSERT_MAIN_THREAD();
    myLblData_.clear();
    for (const auto& label : myLbl_)
        label->setText("");
    setNeedsLayout();
}

void UIProfile::addImage(const gfx::Image& picture) {
    imageZB_->addImage(picture);
}

void UIProfile::addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd,
                         const gfx::Color&) {
    imageZB_->addImage(name, imgd);
}

void UIProfile::justTakenImage(const gfx::Image& picture) {
    imageZB_->addImage(picture);
    report(logoCB_, picture, myData_);
}

void UIProfile::animate() {
    imageZB_->animate();
}

void UIProfile::shrink() {
    lineLbl_->setTransform(gfx::Transform::scale(0, 0));
    auto line = lineLbl_;
    ui::View::animate(1.5, [line] { line->setTransform(gfx::Transform::identity()); });
}

void UIProfile::refresh() {
    setNeedsLayout();
}

void UIProfile::refresh(ui::RefreshControl& control) {
    control.endRefreshing();
}

void UIProfile::setBackgroundColor(const gfx::Color& color) {
    UMEdit::setBackgroundColor(color);
    if (backBtn_) backBtn_->setBackgroundColor(color);
    if (takePhotoBtn_) takePhotoBtn_->setBackgroundColor(color);
}

void UIProfile::editEnable(bool enable) {
    UMEdit::editEnable(enable);
    takePhotoBtn_->setHidden(!enable);
    // The picture switches fit and fill when touched; while editing, a touch
    // on it must reach the card instead, to choose it for the camera.
    imageZB_->setUserInteractionEnabled(!enable);
}

// ---- Translation ------------------------------------------------------------------------

void UIProfile::refreshTranslate() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!translateCB_) {
        setNeedsLayout();
        return;
    }
    refreshTranslateEx(0);
}

void UIProfile::refreshTranslateEx(std::size_t index) {
    MORVANE_ASSERT_MAIN_THREAD();
    DispatchGuard guard(*this);
    // Values without a marker are passed in a loop rather than by recursion,
    // so a card of thousands of values does not run deep.
    while (index < myLblData_.size()) {
        const std::string text = myLblData_[index]->get("data").textOr();
        if (!isTranslatable(text) || !translateCB_) {
            ++index;
            continue;
        }
        const TranslateCB translate = translateCB_;
        std::weak_ptr<UIProfile> weak = std::static_pointer_cast<UIProfile>(weak_from_this().lock());
        // A hook that answers twice updates the label twice but moves the
        // chain on once, so no value is asked for twice.
        auto moved = std::make_shared<std::atomic<bool>>(false);
        translate(text, [weak, index, moved](const std::string& translated) {
            postToMain(weak, [index, translated, moved](UIProfile& card) {
                // The values may have been cleared since the request went out.
                if (index < card.myLbl_.size()) card.myLbl_[index]->setText(translated);
                if (!moved->exchange(true)) card.refreshTranslateEx(index + 1);
            });
        });
        return;
    }
    setNeedsLayout();
}

// ---- Edits ----------------------------------------------------------------------------

void UIProfile::txtChanged(const std::string& text, ui::View& view) {
    if (&view == nameLbl_.get()) {
        if (text.empty())
            report(removeCB_, text, myData_);
        else
            report(nameCB_, getDate() + "-" + text, myData_);
        return;
    }
    const int i = matchLbl(view);
    if (i < 0) return;
    DispatchGuard guard(*this);
    const Value field = myLblData_[std::size_t(i)]->get("field");
    for (const TextCB* callback : {&editCB_, &editCB2_}) {
        if (!*callback) continue;
        NodePtr copy = myData_->shallowCopy();
        copy->set("field", field);
        const TextCB call = *callback;
        call(text, copy);
    }
}

void UIProfile::imageChanged(const gfx::Image& image, ui::View& view) {
    if (auto* picture = dynamic_cast<ZBImage*>(&view)) picture->addImage(image);
    if (&view == imageZB_.get()) report(logoCB_, image, myData_);
}

void UIProfile::backAction() {
    clearFocus();
    setHidden(true);
    report(closeCB_, std::string());
}

void UIProfile::takePhotoAction() {
    if (!takePhotoCB_) return;
    std::weak_ptr<UIProfile> weak = std::static_pointer_cast<UIProfile>(weak_from_this().lock());
    report(takePhotoCB_, std::string(), PhotoCompletion([weak](const gfx::Image& picture) {
               // The application hands the picture back on the main thread;
               // a card released meanwhile reports nothing.
               if (auto card = weak.lock()) card->report(card->logoCB_, picture, card->myData_);
           }));
}

// ---- Measuring ----------------------------------------------------------------------

double UIProfile::getTextHeight() {
    return 1.8 * gfx::TextMetrics::size("Sample Text", gfx::Font::systemFont(fontSize())).height;
}

double UIProfile::heightWithConstrainedWidth(double width, const gfx::Font& font, std::string_view text) {
    return std::ceil(gfx::TextMetrics::boundingSize(text, font, width).height);
}

double UIProfile::heightLbl(std::string_view text) const {
    return 1.2 * heightWithConstrainedWidth(0.8 * frame().width, gfx::Font::systemFont(fontSize()), text);
}

double UIProfile::bottomOf(const ui::View& view, double offset) {
    return view.frame().y + view.frame().height + offset;
}

void UIProfile::addBorder(ui::View& view, int width) {
    view.layer().setBorderColor(gfx::Color::whiteColor());
    view.layer().setBorderWidth(width);
}

int UIProfile::matchLbl(const ui::View& view) const {
    for (std::size_t i = 0; i < myLblData_.size() && i < myLbl_.size(); ++i)
        if (myLbl_[i].get() == &view) return int(i);
    return -1;
}

std::string UIProfile::getDate() {
    return Dates::getDate();
}

std::string UIProfile::myPrefix() const {
    return getDate() + "-" + Txt::splitBy(Txt::splitBy(myKey_, "/"), "-");
}

// ---- Corner colour ----------------------------------------------------------------

std::optional<UIProfile::Bitmap> UIProfile::createARGBBitmapContextFromImage2(const gfx::Image& image) {
    if (image.isNull()) return std::nullopt;
    Bitmap bitmap{image.pixels(gfx::PixelFormat::ARGBPremultiplied), image.pixelWidth(), image.pixelHeight()};
    if (bitmap.bytes.empty()) return std::nullopt;
    // A, R, G, B words stored little-endian: the bytes of each pixel reversed.
    for (std::size_t i = 0; i + 3 < bitmap.bytes.size(); i += 4) {
        std::swap(bitmap.bytes[i], bitmap.bytes[i + 3]);
        std::swap(bitmap.bytes[i + 1], bitmap.bytes[i + 2]);
    }
    return bitmap;
}

gfx::Color UIProfile::getColorAtPoint(gfx::Point point, std::span<const std::uint8_t> data, int width) {
    const auto offset = static_cast<std::size_t>(std::max(0.0, (point.x + point.y * width) * 4));
    if (offset + 4 > data.size()) return gfx::Color::clearColor();
    return gfx::Color(data[offset] / 255.0, data[offset + 1] / 255.0, data[offset + 2] / 255.0,
                      data[offset + 3] / 255.0);
}

std::optional<gfx::Color> UIProfile::getColorOfCornersForImage(const gfx::Image& image) {
    // Only the top-left pixel is read, so it is read in place rather than
    // through a copy of the whole picture; the bytes are the bitmap's.
    const auto argb = image.pixelBytes(0, 0, gfx::PixelFormat::ARGBPremultiplied);
    if (!argb) return std::nullopt;
    const std::uint8_t bytes[4] = {(*argb)[3], (*argb)[2], (*argb)[1], (*argb)[0]};
    return getColorAtPoint({0, 0}, bytes, 1);
}

bool UIProfile::isClear(const gfx::Image& image) {
    const auto colour = getColorOfCornersForImage(image);
    return colour && colour->red == 0 && colour->green == 0 && colour->blue == 0 && colour->alpha == 0;
}

bool UIProfile::isWhite(const gfx::Image& image) {
    const auto colour = getColorOfCornersForImage(image);
    return colour && colour->red == 1 && colour->green == 1 && colour->blue == 1 && colour->alpha == 1;
}

// ---- Layout ----------------------------------------------------------------------------

void UIProfile::layoutSubviews() {
    UMEdit::layoutSubviews();
    const double w = frame().width, h = frame().height;
    const double f = fontSize(), s = 1.2 * f, t = getTextHeight();
    backBtn_->setFrame({0.01 * w, 0.01 * w, 2.5 * f, 2.5 * f});
    backBtn_->layer().setCornerRadius(1.25 * f);
    imageZB_->setFrame({0, 0, w, 0.75 * w});
    takePhotoBtn_->setFrame({w - 1.5 * t, 0.75 * w - 1.2 * t, t, t});
    takePhotoBtn_->layer().setCornerRadius(t / 2);
    takePhotoBtn_->imageView()->setTransform(gfx::Transform::scale3D(0.7, 0.7, 0.7));
    nameLbl_->setFrame({0, bottomOf(*imageZB_, 0.5 * s), w, s});
    lineLbl_->setFrame({0.2 * w, bottomOf(*nameLbl_, 0.2 * s), 0.6 * w, 1});
    const ui::View* above = lineLbl_.get();
    for (std::size_t i = 0; i < myLblData_.size() && i < myLbl_.size(); ++i) {
        const double height = heightLbl(myLblData_[i]->get("data").textOr());
        const gfx::Rect frame = i == 0 ? gfx::Rect{0.05 * w, bottomOf(*above, 0.1 * s), 0.9 * w, height}
                                       : gfx::Rect{0.1 * w, bottomOf(*above, 0.1 * s), 0.8 * w, height};
        myLbl_[i]->setFrame(frame);
        above = myLbl_[i].get();
    }
    const double b = bottomOf(*above, 0);
    setContentSize({w, h > b ? h - 2 * s : b});
}

} // namespace morvane
