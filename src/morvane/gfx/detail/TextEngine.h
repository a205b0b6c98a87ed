#pragma once
// The Pango side of text: one engine per thread (Pango font maps are per
// thread) holding a font map at 72 dpi, so that a point is a pixel at scale 1,
// and a context that measures with unhinted metrics and unrounded glyph
// positions, so measurements do not depend on the scale text is drawn at.
//
// Layouts are cached by text, fonts and layout parameters. Drawing uses the
// same layouts on any Cairo context: Cairo scales the glyph outlines by the
// target's transform, and the positions stay those that were measured. So the
// context is never re-targeted (pango_cairo_update_context), which would
// invalidate every cached layout.

#include <morvane/gfx/AttributedText.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/Geometry.h>

#include <pango/pangocairo.h>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace morvane::gfx::detail {

struct LayoutRequest {
    std::string_view text; // used when `attributed` is null
    const AttributedText* attributed = nullptr;
    const Font* font = nullptr; // the font of a plain text
    double width = -1;          // wrap or ellipsize width in points; -1 for none
    double height = -1;         // height limit in points for ellipsizing; -1 for none
    int maxLines = 0;           // with ellipsizing: at most this many lines; 0 for any
    PangoWrapMode wrap = PANGO_WRAP_WORD_CHAR;
    PangoEllipsizeMode ellipsize = PANGO_ELLIPSIZE_NONE;
    PangoAlignment alignment = PANGO_ALIGN_LEFT;
};

// A counted reference to a layout.
struct LayoutRef {
    PangoLayout* layout = nullptr;
    Size size; // logical size in points
    explicit LayoutRef(PangoLayout* l, Size s) : layout(l), size(s) { g_object_ref(layout); }
    ~LayoutRef() { g_object_unref(layout); }
    LayoutRef(const LayoutRef&) = delete;
    LayoutRef& operator=(const LayoutRef&) = delete;
};

class TextEngine {
  public:
    // The engine of the calling thread.
    static TextEngine& current();

    ~TextEngine();
    TextEngine(const TextEngine&) = delete;
    TextEngine& operator=(const TextEngine&) = delete;

    LayoutRef layout(const LayoutRequest& request);
    // Only the logical size; a cached measurement costs one hash lookup.
    Size measure(const LayoutRequest& request);

    PangoFontDescription* description(const Font& font);
    bool hasFamily(std::string_view family);
    struct Metrics {
        double ascender, descender, lineHeight;
    };
    Metrics metrics(const Font& font);
    void clear();

  private:
    TextEngine();
    struct Entry {
        PangoLayout* layout;
        Size size;
    };
    const Entry& entry(const LayoutRequest& request);
    void makeKey(const LayoutRequest& request);
    PangoLayout* build(const LayoutRequest& request);

    PangoFontMap* fontMap_ = nullptr;
    PangoContext* context_ = nullptr;
    std::unordered_map<std::string, Entry> layouts_;
    std::unordered_map<std::string, PangoFontDescription*> descriptions_;
    std::unordered_map<std::string, Metrics> metrics_;
    std::unordered_set<std::string> families_; // lower case
    std::string key_;                          // reused so that a cache hit allocates nothing
};

} // namespace morvane::gfx::detail
