#include <morvane/gfx/detail/TextEngine.h>

#include <algorithm>
#include <cctype>
#include <cstring>

namespace morvane::gfx::detail {

namespace {

// Beyond this many cached layouts the cache starts over; a screen rarely shows
// more than a few hundred distinct texts.
constexpr std::size_t kMaxLayouts = 2048;

int toPango(double points) {
    return static_cast<int>(points * PANGO_SCALE + (points >= 0 ? 0.5 : -0.5));
}

template <typename T> void appendRaw(std::string& key, const T& value) {
    key.append(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string lowercase(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

guint16 colorChannel(double component) {
    return static_cast<guint16>(std::clamp(component, 0.0, 1.0) * 65535.0 + 0.5);
}

} // namespace

TextEngine& TextEngine::current() {
    thread_local std::unique_ptr<TextEngine> engine(new TextEngine());
    return *engine;
}

TextEngine::TextEngine() {
    fontMap_ = pango_cairo_font_map_new();
    pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(fontMap_), 72);
    context_ = pango_font_map_create_context(fontMap_);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context_, options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(context_, FALSE);
    PangoLanguage* language = pango_language_from_string("en-us");
    pango_context_set_language(context_, language);
}

TextEngine::~TextEngine() {
    clear();
    for (auto& [key, description] : descriptions_)
        pango_font_description_free(description);
    g_object_unref(context_);
    g_object_unref(fontMap_);
}

void TextEngine::clear() {
    for (auto& [key, e] : layouts_)
        g_object_unref(e.layout);
    layouts_.clear();
}

PangoFontDescription* TextEngine::description(const Font& font) {
    auto found = descriptions_.find(font.key());
    if (found != descriptions_.end()) return found->second;
    PangoFontDescription* d = pango_font_description_new();
    pango_font_description_set_family(d, font.family().c_str());
    pango_font_description_set_size(d, std::max(1, toPango(font.pointSize())));
    pango_font_description_set_weight(d, font.isBold() ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_style(d, font.isItalic() ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_font_description_set_stretch(d, font.width() == FontWidth::Condensed ? PANGO_STRETCH_CONDENSED
                                                                               : PANGO_STRETCH_NORMAL);
    descriptions_.emplace(font.key(), d);
    return d;
}

bool TextEngine::hasFamily(std::string_view family) {
    if (families_.empty()) {
        PangoFontFamily** list = nullptr;
        int count = 0;
        pango_font_map_list_families(fontMap_, &list, &count);
        for (int i = 0; i < count; ++i)
            families_.insert(lowercase(pango_font_family_get_name(list[i])));
        g_free(list);
    }
    return families_.count(lowercase(family)) > 0;
}

TextEngine::Metrics TextEngine::metrics(const Font& font) {
    auto found = metrics_.find(font.key());
    if (found != metrics_.end()) return found->second;
    PangoFontMetrics* m = pango_context_get_metrics(context_, description(font), nullptr);
    Metrics result{pango_font_metrics_get_ascent(m) / double(PANGO_SCALE),
                   pango_font_metrics_get_descent(m) / double(PANGO_SCALE),
                   pango_font_metrics_get_height(m) / double(PANGO_SCALE)};
    pango_font_metrics_unref(m);
    metrics_.emplace(font.key(), result);
    return result;
}

void TextEngine::makeKey(const LayoutRequest& r) {
    key_.clear();
    if (r.attributed) {
        key_ += r.attributed->key();
    } else {
        key_.append(r.text);
        key_ += '\x1f';
        key_ += r.font ? r.font->key() : std::string();
    }
    key_ += '\x1e';
    appendRaw(key_, r.width);
    appendRaw(key_, r.height);
    appendRaw(key_, r.maxLines);
    appendRaw(key_, r.wrap);
    appendRaw(key_, r.ellipsize);
    appendRaw(key_, r.alignment);
}

namespace {

// Pango refuses text that is not UTF-8 (with a warning, and nothing drawn):
// bad bytes are shown as U+FFFD instead, as every other text path does.
std::string validText(std::string_view text) {
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr)) return std::string(text);
    gchar* mended = g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
    std::string out = mended;
    g_free(mended);
    return out;
}

} // namespace

PangoLayout* TextEngine::build(const LayoutRequest& r) {
    PangoLayout* layout = pango_layout_new(context_);
    if (r.attributed) {
        // Each run mended on its own, so the attribute offsets follow it.
        std::vector<std::string> texts;
        std::string text;
        for (const AttributedText::Run& run : r.attributed->runs()) {
            texts.push_back(validText(run.text));
            text += texts.back();
        }
        pango_layout_set_text(layout, text.c_str(), static_cast<int>(text.size()));
        PangoAttrList* attributes = pango_attr_list_new();
        guint start = 0;
        std::size_t index = 0;
        for (const AttributedText::Run& run : r.attributed->runs()) {
            guint end = start + static_cast<guint>(texts[index++].size());
            PangoAttribute* fontAttribute = pango_attr_font_desc_new(description(run.font));
            fontAttribute->start_index = start, fontAttribute->end_index = end;
            pango_attr_list_insert(attributes, fontAttribute);
            PangoAttribute* color = pango_attr_foreground_new(
                colorChannel(run.color.red), colorChannel(run.color.green), colorChannel(run.color.blue));
            color->start_index = start, color->end_index = end;
            pango_attr_list_insert(attributes, color);
            PangoAttribute* alpha =
                pango_attr_foreground_alpha_new(std::max<guint16>(1, colorChannel(run.color.alpha)));
            alpha->start_index = start, alpha->end_index = end;
            pango_attr_list_insert(attributes, alpha);
            start = end;
        }
        pango_layout_set_attributes(layout, attributes);
        pango_attr_list_unref(attributes);
        if (!r.attributed->runs().empty())
            pango_layout_set_font_description(layout, description(r.attributed->runs().front().font));
    } else {
        const std::string text = validText(r.text);
        pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
        if (r.font) pango_layout_set_font_description(layout, description(*r.font));
    }
    if (r.width >= 0) pango_layout_set_width(layout, toPango(r.width));
    pango_layout_set_wrap(layout, r.wrap);
    pango_layout_set_ellipsize(layout, r.ellipsize);
    if (r.ellipsize != PANGO_ELLIPSIZE_NONE) {
        if (r.maxLines > 0)
            pango_layout_set_height(layout, -r.maxLines);
        else if (r.height >= 0)
            pango_layout_set_height(layout, toPango(r.height));
    }
    pango_layout_set_alignment(layout, r.alignment);
    return layout;
}

const TextEngine::Entry& TextEngine::entry(const LayoutRequest& request) {
    makeKey(request);
    auto found = layouts_.find(key_);
    if (found != layouts_.end()) return found->second;
    if (layouts_.size() >= kMaxLayouts) clear();
    PangoLayout* layout = build(request);
    PangoRectangle logical;
    pango_layout_get_extents(layout, nullptr, &logical);
    Size size{logical.width / double(PANGO_SCALE), logical.height / double(PANGO_SCALE)};
    return layouts_.emplace(key_, Entry{layout, size}).first->second;
}

LayoutRef TextEngine::layout(const LayoutRequest& request) {
    const Entry& e = entry(request);
    return LayoutRef(e.layout, e.size);
}

Size TextEngine::measure(const LayoutRequest& request) {
    return entry(request).size;
}

} // namespace morvane::gfx::detail
