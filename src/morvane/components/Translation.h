#pragma once
// The translation hook. A text that holds "<en>" is translatable: a component
// that shows it hands it to the owner's hook (watchTranslate) and shows the
// text without the marker meanwhile. The hook's completion may be called on
// any thread, any number of times.

#include <functional>
#include <string>
#include <string_view>

namespace morvane {

inline constexpr std::string_view kTranslateMarker = "<en>";

// The completion takes the translated text.
using TranslateCompletion = std::function<void(const std::string& translated)>;
// The hook: a text (markers kept) and the completion that takes its translation.
using TranslateCB = std::function<void(const std::string& text, TranslateCompletion completion)>;

// True when the text holds the marker anywhere.
bool isTranslatable(std::string_view text);
// The text with every marker taken out.
std::string withoutTranslateMarkers(std::string_view text);

} // namespace morvane
