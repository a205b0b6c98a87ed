#include <morvane/components/Translation.h>

namespace morvane {

bool isTranslatable(std::string_view text) {
    return text.find(kTranslateMarker) != std::string_view::npos;
}

std::string withoutTranslateMarkers(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    std::size_t from = 0;
    while (true) {
        const auto at = text.find(kTranslateMarker, from);
        if (at == std::string_view::npos) break;
        out.append(text.substr(from, at - from));
        from = at + kTranslateMarker.size();
    }
    out.append(text.substr(from));
    return out;
}

} // namespace morvane
