#pragma once
// ZBInput: the multi-line input field of the ZBTextview editor panel: caption,
// icon, error line and toaster around a text view, validated on every change.
// It never refuses a change: a failed validation colours the error line and
// raises a toast. The owner reads and writes the text through txt().
//
//   auto field = std::make_shared<ZBInput>("Note", "email", false);
//   field->watchAction(0, [](const std::string& caption, const std::string& text) { return Value(); });
//
// Threads: main thread only.

#include <morvane/forms/detail/InputField.h>

namespace morvane {

class ZBInput : public detail::InputField {
  public:
    ZBInput(std::string_view name, std::optional<std::string_view> image, bool password)
        : InputField(name, image, password) {}
    static std::shared_ptr<ZBInput> initWithName(std::string_view name, std::optional<std::string_view> image,
                                                 bool password) {
        return std::make_shared<ZBInput>(name, image, password);
    }
};

} // namespace morvane
