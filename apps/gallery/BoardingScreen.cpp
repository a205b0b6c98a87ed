#include "BoardingScreen.h"

#include "Style.h"
#include "VirtualCamera.h"

#include <morvane/gfx/Font.h>
#include <morvane/gfx/QRCode.h>
#include <morvane/model/Json.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Queue.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kPlainText = "Gate B12 closes at 10:40";

std::shared_ptr<ui::Label> jsonLabel() {
    auto label = std::make_shared<ui::Label>();
    label->setFont(gfx::Font::systemFont(11));
    label->setTextColor(style::kStatusText);
    label->setNumberOfLines(0);
    label->setBackgroundColor(style::kBar);
    return label;
}

} // namespace

BoardingScreen::BoardingScreen(const gfx::Rect& frame, NodePtr booking, std::filesystem::path folder)
    : TitledScreen(frame, "Boarding pass", "The pass is valid"), booking_(std::move(booking)),
      folder_(std::move(folder)) {
    pass_ = std::make_shared<UIQRGen>();
    original_ = jsonLabel();
    original_->setText("The pass holds:\n" + json::write(Value(booking_), json::Layout::Pretty));
    voidButton_ = style::actionButton("Void", style::kStop);
    scanButton_ = style::actionButton("Scan pass");
    textButton_ = style::actionButton("Scan text");
    reader_ = std::make_shared<UIQRRead>();
    decoded_ = jsonLabel();
    decoded_->setText("Read back:\n(nothing yet)");
    pass_->addStatus(std::nullopt);
    for (const auto& view : std::initializer_list<std::shared_ptr<ui::View>>{
             pass_, original_, voidButton_, scanButton_, textButton_, reader_, decoded_})
        addSubview(view);
}

std::shared_ptr<BoardingScreen> BoardingScreen::make(const gfx::Rect& frame, NodePtr booking,
                                                     std::filesystem::path folder, Back back) {
    auto screen = std::make_shared<BoardingScreen>(frame, std::move(booking), std::move(folder));
    screen->wire(std::move(back));
    return screen;
}

void BoardingScreen::wire(Back back) {
    watchBack(std::move(back));
    std::weak_ptr<BoardingScreen> weak = std::static_pointer_cast<BoardingScreen>(shared_from_this());
    voidButton_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        auto self = weak.lock();
        if (!self) return;
        const bool voided = self->pass_->stamp()->tag() == 1;
        self->pass_->addStatus(voided ? std::nullopt : std::optional<std::string_view>("VOID"));
        self->voidButton_->setTitle(voided ? "Void" : "Restore");
        self->status()->setText(voided ? "The pass is valid again" : "The pass is void: the stamp covers it");
    });
    scanButton_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        if (auto self = weak.lock()) self->scan(UIQRGen::dict2Text(self->booking_), "boarding-pass.png");
    });
    textButton_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        if (auto self = weak.lock()) self->scan(kPlainText, "plain-text.png");
    });
    // The reader answers on its own queue; the screen is touched on the main queue.
    reader_->watchRead([weak](const std::string&, const Value& node) {
        sys::Queue::main().async([weak, node] {
            auto self = weak.lock();
            if (!self) return;
            ++self->reads_;
            self->decoded_->setText("Read back:\n" + json::write(node, json::Layout::Pretty));
            const bool same = node.node() && node.node()->equals(*self->booking_);
            self->status()->setText(same ? "Read back: the same booking" : "Read back: a different Node");
        });
    });
}

void BoardingScreen::scan(const std::string& text, const std::string& file) {
    // The camera is shown the code as a page would be: the code on white with a margin.
    const auto bytes = std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    const auto code = gfx::QRCode::encode(bytes);
    if (!code || !showToCamera(gfx::QRCode::draw(*code, {360, 360}, 2), folder_ / file)) {
        status()->setText("No picture for the camera");
        return;
    }
    // From "stopped after a code" the first press only makes the reader idle.
    if (reader_->save()->tag() == 1) reader_->btnAction();
    reader_->btnAction();
    status()->setText(reader_->captureSessionRunning() ? "Scanning…" : "No camera to scan with");
}

void BoardingScreen::layoutSubviews() {
    // The pass across the screen (the stamp needs the width for its word),
    // the reader with its three buttons beside it, and the booking as sent
    // and as read back side by side below.
    const gfx::Size size = bounds().size();
    const double column = (size.width - 50) / 2, right = 30 + column;
    placeFrame();
    pass_->setFrame({20, 92, size.width - 40, 260});
    reader_->setFrame({20, 364, column, column});
    const double button = (column - 20) / 3;
    voidButton_->setFrame({right, 364, column, button});
    scanButton_->setFrame({right, 374 + button, column, button});
    textButton_->setFrame({right, 384 + 2 * button, column, button});
    const double texts = 376 + column, textHeight = size.height - style::kStatusHeight - 12 - texts;
    original_->setFrame({20, texts, column, textHeight});
    decoded_->setFrame({right, texts, column, textHeight});
    // The code is drawn for the size it is shown at, once that size is known.
    if (drawnFor_ != pass_->bounds().size()) {
        pass_->layoutIfNeeded();
        pass_->addQR(booking_);
        drawnFor_ = pass_->bounds().size();
    }
}

} // namespace gallery
