#pragma once
// ZBDataInput: the overlay in which the user retypes a text: a half-transparent
// veil over the owner and a ZBTextview sliding up from the bottom (side
// margins 0.1 of the width); Save, DELETE or Cancel slides it away, hides
// the bar and tells the owner.
//
//   auto bar = ZBDataInput::initWithData("", "", "");
//   bar->setFrame(owner->bounds());
//   owner->addSubview(bar);
//   bar->watchAction(0, [](const std::string& text) { ... }, [](bool) { ... }, [](bool) { ... });
//   bar->addData("Mesa 4");
//   bar->show(*owner);
//
// Threads: main thread only.

#include <morvane/forms/ZBTextview.h>
#include <morvane/forms/detail/DataInputBar.h>

namespace morvane {

class ZBDataInput : public detail::DataInputBar {
  public:
    static constexpr double kMargin = 0.1;

    // The three texts are not used: the panel is always made with "Data", "Item" and "Price".
    ZBDataInput(std::string_view top = {}, std::string_view middle = {}, std::string_view bottom = {});
    static std::shared_ptr<ZBDataInput> initWithData(std::string_view top = {}, std::string_view middle = {},
                                                     std::string_view bottom = {});

    std::shared_ptr<ZBTextview> nTextview() const { return std::static_pointer_cast<ZBTextview>(panel_); }
};

} // namespace morvane
