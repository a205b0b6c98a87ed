#include <morvane/forms/ZBDataInput.h>

namespace morvane {

ZBDataInput::ZBDataInput(std::string_view, std::string_view, std::string_view)
    : DataInputBar(ZBTextview::initWithData("Data", "Item", "Price"), kMargin) {}

std::shared_ptr<ZBDataInput> ZBDataInput::initWithData(std::string_view top, std::string_view middle,
                                                       std::string_view bottom) {
    return std::make_shared<ZBDataInput>(top, middle, bottom);
}

} // namespace morvane
