#include <morvane/components/Validation.h>

#include <morvane/model/List.h>
#include <morvane/sys/Log.h>

namespace morvane {

std::optional<ValidationFailure> readValidation(const Value& answer, std::string_view field) {
    if (answer.isAbsent() || answer.isNull()) return std::nullopt;
    const ListPtr list = answer.list();
    const std::string* message = list && list->size() == 2 ? list->at(0).text() : nullptr;
    const gfx::Color* colour = list && list->size() == 2 ? list->at(1).as<gfx::Color>() : nullptr;
    if (!message || !colour) {
        sys::Log::platform("Validation of \"" + std::string(field) +
                           "\": the answer is not [message, colour]; the text is taken as valid");
        return std::nullopt;
    }
    return ValidationFailure{*message, *colour};
}

} // namespace morvane
