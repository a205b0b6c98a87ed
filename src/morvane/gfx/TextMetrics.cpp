#include <morvane/gfx/TextMetrics.h>
#include <morvane/gfx/detail/TextEngine.h>

#include <cmath>

namespace morvane::gfx {

namespace {

double wrapWidth(double width) {
    return width > 0 && std::isfinite(width) ? width : 0;
}

} // namespace

Size TextMetrics::size(std::string_view text, const Font& font) {
    detail::LayoutRequest request;
    request.text = text;
    request.font = &font;
    return detail::TextEngine::current().measure(request);
}

Size TextMetrics::size(const AttributedText& text) {
    detail::LayoutRequest request;
    request.attributed = &text;
    return detail::TextEngine::current().measure(request);
}

Size TextMetrics::boundingSize(std::string_view text, const Font& font, double width) {
    detail::LayoutRequest request;
    request.text = text;
    request.font = &font;
    request.width = wrapWidth(width);
    return detail::TextEngine::current().measure(request);
}

Size TextMetrics::boundingSize(const AttributedText& text, double width) {
    detail::LayoutRequest request;
    request.attributed = &text;
    request.width = wrapWidth(width);
    return detail::TextEngine::current().measure(request);
}

int TextMetrics::lineCount(std::string_view text, const Font& font, double width) {
    detail::LayoutRequest request;
    request.text = text;
    request.font = &font;
    request.width = wrapWidth(width);
    detail::LayoutRef layout = detail::TextEngine::current().layout(request);
    return pango_layout_get_line_count(layout.layout);
}

void TextMetrics::clearCache() {
    detail::TextEngine::current().clear();
}

} // namespace morvane::gfx
