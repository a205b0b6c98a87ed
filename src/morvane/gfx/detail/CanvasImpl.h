#pragma once
// The state behind a Canvas: the Cairo context, its target, and the parts of
// the drawing state Cairo does not keep (global alpha, the blend mode's name).

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/detail/TextEngine.h>

#include <cairo.h>

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
    };

    Impl(cairo_surface_t* target, double deviceScale); // takes over a reference to the target
    ~Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    void setSource(const Color& color);
    void finish(bool stroke);
    // Draws a planned text; `runColours` when the layout's runs carry their own colours.
    double showText(detail::TextPlan& plan, const Rect& rect, const TextStyle& style, bool runColours);

    cairo_surface_t* surface;
    double scale;
    cairo_t* cr;
    State state;
    std::vector<State> stack;
};

} // namespace morvane::gfx
