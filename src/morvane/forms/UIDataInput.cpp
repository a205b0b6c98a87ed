#include <morvane/forms/UIDataInput.h>

namespace morvane {

UIDataInput::UIDataInput(std::string_view, std::string_view, std::string_view)
    : DataInputBar(NTextview::initWithData("Data", "Item", "Price"), kMargin) {}

std::shared_ptr<UIDataInput> UIDataInput::initWithData(std::string_view top, std::string_view middle,
                                                       std::string_view bottom) {
    return std::make_shared<UIDataInput>(top, middle, bottom);
}

} // namespace morvane
