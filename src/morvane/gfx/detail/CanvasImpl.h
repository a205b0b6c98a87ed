#pragma once
// The state behind a Canvas: the Cairo context, its target, and the parts of
// the drawing state Cairo does not keep (global alpha, the blend mode's name).

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/detail/TextEngine.h>

#include <cairo.h>
#include <pixman.h>

#include <vector>

namespace morvane::gfx {

namespace detail {
// How a text is laid out for a rectangle and a style.
struct TextPlan {
    LayoutRequest request;
    bool manualAlignment = false; // a single unwrapped line placed by hand
    int lineLimit = 0;            // lines to show when wrapping without an ellipsis
};
} // namespace detail

struct Canvas::Impl {
    struct State {
        double alpha = 1;
        BlendMode blend = BlendMode::Normal;
        bool layer = false; // this saved state opened a transparency layer
        // The clip as a rectangle in device pixels, while it is one (only
        // rectangles under a transform without rotation keep it so).
        bool clipIsBox = true;
        double clipX0 = 0, clipY0 = 0, clipX1 = 0, clipY1 = 0;
    };

    Impl(cairo_surface_t* target, double deviceScale); // takes over a reference to the target
    ~Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    void setSource(const Color& color);
    // Narrows the tracked clip box by a user-space rectangle (or gives up
    // tracking it when the shape or transform makes the clip not a box).
    void trackClip(const Rect& rect, bool isBox);
    // Fills a rounded rectangle (or the ring between two, for an outline)
    // directly into the pixels when the state allows; false if Cairo must.
    bool fillDirect(const Rect& outer, double outerRadius, const Rect* inner, double innerRadius,
                    const Color& color);
    bool strokeDirect(const Rect& rect, double cornerRadius, const Color& color, double lineWidth);
    void finish(bool stroke);
    // Draws a planned text; `runColours` when the layout's runs carry their own colours.
    double showText(detail::TextPlan& plan, const Rect& rect, const TextStyle& style, bool runColours);

    cairo_surface_t* surface;
    double scale;
    cairo_t* cr;
    State state;
    std::vector<State> stack;
    bool directPixels = false;        // the target is a 32-bit image whose pixels can be written
    pixman_image_t* pixels = nullptr; // the target's pixels for pixman, made on first use
};

} // namespace morvane::gfx
