#include "MenusScreen.h"

#include "Translator.h"
#include "VenueData.h"

#include <morvane/gfx/Font.h>
#include <morvane/lists/UICTblCell.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Colors.h>

#include <utility>
#include <vector>

namespace gallery {

using namespace morvane;

namespace {
using Keys = std::vector<std::string>;
} // namespace

MenusScreen::MenusScreen(const gfx::Rect& frame, NodePtr menus, std::shared_ptr<Translator> translator)
    : CompositeScreen(frame, UITblHdrAll::initTbl(), "Tap the menu's name for the next one · tap a dish"),
      menus_(std::move(menus)), translator_(std::move(translator)) {}

std::shared_ptr<MenusScreen> MenusScreen::make(const gfx::Rect& frame, NodePtr menus,
                                               std::shared_ptr<Translator> translator, Back back) {
    auto screen = std::make_shared<MenusScreen>(frame, std::move(menus), std::move(translator));
    screen->wire(std::move(back));
    return screen;
}

void MenusScreen::wire(Back back) {
    const NodePtr menus = menus_ ? menus_ : Node::make();
    auto& composite = *this->composite();
    composite.cfg({
        .image = [](Keys& image) { image = {"picture"}; },
        .header = [](Keys& header) { header = {"name"}; },
        // "$": the ingredients, gathered from the dish's "$" entries, one a line.
        .body = [](Keys& body) { body = {"$"}; },
        .price = [](Keys& price) { price = {"price"}; },
        .sortBy = [](Keys& sortBy) { sortBy = {"name"}; },
        .numOfCol = [](float& columns) { columns = 2; },
        .checkBox = [](bool& checkBox) { checkBox = true; },
    });
    composite.setBackgroundColor(style::kList);

    // The screen owns the composite: its callbacks hold the screen weakly.
    std::weak_ptr<MenusScreen> weak = std::static_pointer_cast<MenusScreen>(shared_from_this());
    composite.watchTbl("menus",
                       [weak](const Value& key, const NodePtr& dish) {
                           auto self = weak.lock();
                           if (!self) return;
                           self->lastSelected_ = key.toText();
                           self->say(displayName(dish) + " · " + (dish ? dish->get("price").textOr() : "") +
                                     " €");
                       },
                       {}, {});
    composite.watchTranslate([translator = translator_](const std::string& text, TranslateCompletion done) {
        translator->translate(text, std::move(done));
    });
    // The kitchen's service: answers on a background queue, later.
    composite.watchFlight([service = service_, specials = menus->get("specials").node()](
                              const NodePtr&, UITblHdrAll::FlightCompletion done) {
        ++service->requests;
        sys::Queue::global().after(kServiceDelay, [service, specials, done = std::move(done)] {
            done(specials ? specials->deepCopyDictionary() : Node::make());
            ++service->answers;
        });
    });
    watchBack(std::move(back));

    composite.addHeaderTitle(menus->get("title").textOr());
    composite.addHeaderSubtitle(menus->get("subtitle").textOr());
    composite.addHeaderImage(menus->get("photo").textOr(), std::nullopt);
    if (const NodePtr& sets = menus->get("menus").node())
        for (const auto& [name, set] : *sets)
            composite.addDataWhenSelectHeader(name, set);
    composite.refreshHeader();
}

std::string MenusScreen::waitingFor() const {
    if (serviceAnswers() < serviceRequests()) return "the kitchen's answer";
    const auto& grid = *composite()->ctblUI()->tbl();
    std::string missing;
    for (const auto& cell : grid.visibleCells()) {
        auto tile = std::dynamic_pointer_cast<UICTblCell>(cell);
        if (!tile) continue;
        const bool shown = !tile->indicator()->isAnimating() && !tile->photo()->isHidden() &&
                           !tile->photo()->image().isNull();
        if (!shown) missing += (missing.empty() ? "" : ", ") + tile->headLbl()->text();
    }
    if (!missing.empty()) return "pictures for " + missing;
    if (composite()->headerUI()->photo()->image().isNull()) return "the venue's photo";
    if (const int pending = translator_->pending()) return std::to_string(pending) + " translations";
    return {};
}

} // namespace gallery
