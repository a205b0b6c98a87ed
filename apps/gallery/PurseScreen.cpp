#include "PurseScreen.h"

#include "Style.h"
#include "VirtualCamera.h"

#include <morvane/gfx/QRCode.h>
#include <morvane/lists/UICTblCell.h>
#include <morvane/media/UIQRGen.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Queue.h>

namespace gallery {

using namespace morvane;

PurseScreen::PurseScreen(const gfx::Rect& frame, const NodePtr& sample, std::filesystem::path folder)
    : TitledScreen(frame, "Purse", "Choose an entry"), wallets_(sample->get("wallets").node()),
      folder_(std::move(folder)) {
    if (!wallets_) wallets_ = Node::make();
    const std::string* photo = sample->get("photo").text();
    purse_ =
        UIPurse::initWithTitle("Hotel Farol", photo ? std::optional<std::string_view>(*photo) : std::nullopt);
    purse_->setBackgroundColor(style::kList);
    purse_->headerUI()->setBackgroundColor(style::kBar);
    purse_->cfg({.header = [](std::vector<std::string>& keys) { keys = {"name"}; },
                 .price = [](std::vector<std::string>& keys) { keys = {"$price"}; },
                 .sort = [](bool& sort) { sort = false; },
                 .numOfCol = [](float& columns) { columns = 2; }});
    pay_ = ZBPay::initWithColor(style::kBar);
    addSubview(pay_);
    addSubview(purse_);
}

std::shared_ptr<PurseScreen> PurseScreen::make(const gfx::Rect& frame, const NodePtr& sample,
                                               std::filesystem::path folder, Back back) {
    auto screen = std::make_shared<PurseScreen>(frame, sample, std::move(folder));
    screen->wire(std::move(back));
    return screen;
}

void PurseScreen::wire(Back back) {
    watchBack(std::move(back));
    std::weak_ptr<PurseScreen> weak = std::static_pointer_cast<PurseScreen>(shared_from_this());
    purse_->tbl()->watchTbl("gallery",
                            [weak](const Value&, const NodePtr& entry) {
                                if (auto self = weak.lock(); self && entry)
                                    if (const std::string* name = entry->get("name").text())
                                        self->status()->setText("Showing " + *name);
                            },
                            {}, {});
    // The reader reports on its own queue; the screen is touched on the main queue.
    purse_->watchQRScan([weak](const std::string& what, const Value& record) {
        const NodePtr entry = record.node();
        const std::string name = entry && entry->get("name").text() ? *entry->get("name").text() : "a code";
        sys::Queue::main().async([weak, what, name] {
            auto self = weak.lock();
            if (!self) return;
            self->lastRead_ = name;
            self->status()->setText(what + ": read " + name);
        });
    });
    pay_->watchPayment(
        0,
        [weak](bool) {
            if (auto self = weak.lock()) self->status()->setText("Paying with the phone");
        },
        [weak](bool) {
            if (auto self = weak.lock())
                self->status()->setText("Paying by card: the strip makes way for the card form");
        });
    purse_->addWallet(wallets_);
}

bool PurseScreen::showCodeOf(const std::string& key) {
    NodePtr entry;
    for (const auto& [name, wallet] : *wallets_)
        if (const NodePtr& entries = wallet.node(); entries && entries->get(key).node())
            entry = entries->get(key).node();
    if (!entry) return false;
    // The code as the panel would show it: the entry without its lines.
    NodePtr shown = entry->shallowCopy();
    shown->remove("^org");
    const std::string text = UIQRGen::dict2Text(shown);
    const auto code =
        gfx::QRCode::encode(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    if (!code || !showToCamera(gfx::QRCode::draw(*code, {360, 360}, 2), folder_ / (key + "-code.png")))
        return false;
    const auto& reader = purse_->qrProfile()->qrReadUI();
    if (reader->save()->tag() == 1) reader->btnAction();
    reader->btnAction();
    return reader->captureSessionRunning();
}

std::string PurseScreen::waitingFor() const {
    std::string missing;
    for (const auto& cell : purse_->tbl()->tbl()->visibleCells()) {
        auto tile = std::dynamic_pointer_cast<UICTblCell>(cell);
        if (tile && (tile->indicator()->isAnimating() || tile->photo()->image().isNull()))
            missing += (missing.empty() ? "" : ", ") + tile->headLbl()->text();
    }
    if (!missing.empty()) return "pictures for " + missing;
    return purse_->headerUI()->photo()->image().isNull() ? "the header's photo" : "";
}

void PurseScreen::layoutSubviews() {
    const gfx::Rect area = placeFrame();
    const double strip = 64;
    purse_->setFrame({area.x, area.y, area.width, area.height - strip});
    pay_->setFrame({area.x, area.maxY() - strip, area.width, strip});
}

} // namespace gallery
