#include <morvane/media/UIQRGen.h>

#include <morvane/gfx/Font.h>
#include <morvane/gfx/ImageContext.h>
#include <morvane/gfx/QRCode.h>
#include <morvane/gfx/Transform.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/model/Json.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/Label.h>

#include <numbers>

namespace morvane {

namespace {
constexpr double kStampAway = 8;
} // namespace

UIQRGen::UIQRGen(const gfx::Rect& frame) : ui::View(frame) {
    qrCode_ = std::make_shared<ui::ImageView>(gfx::Rect{0, 0, 200, 200});
    qrCode_->setImage(ResourcePictures::named("wallet", {200, 200}));
    qrCode_->setContentMode(gfx::ContentMode::AspectFill);
    addSubview(qrCode_);
    stamp_ = std::make_shared<ui::Button>();
    stamp_->setTitle("VOID");
    stamp_->setTitleColor(gfx::Color::whiteColor());
    stamp_->setBackgroundColor(gfx::Color::blackColor());
    stamp_->titleLabel()->setFont(gfx::Font::boldSystemFont(gfx::Font::systemFontSize()));
    stamp_->setTransform(gfx::Transform::rotation(std::numbers::pi / 4));
    // Anyone may hold the button after the view is gone: the destructor takes the action back.
    stamp_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { backAction(); });
    addSubview(stamp_);
}

std::shared_ptr<UIQRGen> UIQRGen::initWithUsrEnable(bool enabled) {
    auto view = std::make_shared<UIQRGen>();
    view->stamp_->setTitle(std::nullopt);
    view->stamp_->setUserInteractionEnabled(enabled);
    return view;
}

UIQRGen::~UIQRGen() {
    stamp_->removeActions(ui::ControlEvent::TouchUpInside);
}

void UIQRGen::addQR(const NodePtr& node) {
    MORVANE_ASSERT_MAIN_THREAD();
    // A Node that makes no code shows no code (not an older one).
    qrCode_->setImage(createQRFromDict(qrCode_->frame(), node));
}

void UIQRGen::addStatus(std::optional<std::string_view> status) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (status) {
        stamp_->setTitle(std::string(*status));
        stamp_->setHidden(false);
        stamp_->setTag(1);
    } else {
        stamp_->setHidden(true);
        stamp_->setTitle("");
        stamp_->setTag(0);
    }
}

gfx::Image UIQRGen::codeOf(const gfx::Rect& rect, const std::string& text) const {
    const auto bytes = std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    const auto code = gfx::QRCode::encode(bytes);
    if (!code) {
        sys::Log::platform("Got an error: a message of " + std::to_string(text.size()) +
                           " bytes makes no QR code at level H (1 to 1273 bytes fit)");
        return {};
    }
    return gfx::QRCode::draw(*code, rect.size(), gfx::ImageContext::screenScale());
}

gfx::Image UIQRGen::createQRFromDict(const gfx::Rect& rect, const NodePtr& node) const {
    return codeOf(rect, dict2Text(node));
}

gfx::Image UIQRGen::createQRFromString(const gfx::Rect& rect) const {
    return codeOf(rect, dict2JSON());
}

std::string UIQRGen::dict2Text(const NodePtr& node) {
    if (!node) {
        sys::Log::platform("Got an error: there is no Node to write");
        return "";
    }
    return json::write(Value(node));
}

std::string UIQRGen::dict2JSON() {
    const auto sample = Node::make({{"nm", "Yayoi"},
                                    {"bg", "K40918"},
                                    {"passcode", "K40918"},
                                    {"fbase", "World/THA/Bangkok/Central/Food/Thai/Yayoi"},
                                    {"forder", "K40918"},
                                    {"adr", "adr"},
                                    {"city", "city"},
                                    {"zphone", "zphone"}});
    return json::write(Value(sample), json::Layout::Pretty);
}

void UIQRGen::backAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    stamp_->setHidden(true);
    std::weak_ptr<ui::Button> weakStamp = stamp_;
    sys::Queue::main().after(kStampAway, [weakStamp] {
        if (auto stamp = weakStamp.lock(); stamp && stamp->tag() == 1) stamp->setHidden(false);
    });
}

void UIQRGen::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, s = gfx::Font::systemFontSize();
    qrCode_->setFrame({0, 0, w, h});
    // The stamp is turned: place it through its centre and bounds.
    gfx::Rect frame;
    if (s > 0.2 * h) {
        stamp_->titleLabel()->setFont(gfx::Font::boldSystemFont(0.7 * s));
        frame = {(w - 2.1 * s) / 2, (h - 4.4 * s) / 2, 2.1 * s, 4.4 * s};
        stamp_->layer().setCornerRadius(0.4 * s);
    } else {
        frame = {0.34 * w, 0.15 * h, 0.32 * w, 0.7 * h};
        stamp_->titleLabel()->setFont(gfx::Font::boldSystemFont(2 * s));
        stamp_->layer().setCornerRadius(0.05 * h);
    }
    stamp_->setBounds({0, 0, frame.width, frame.height});
    stamp_->setCenter(frame.center());
}

} // namespace morvane
