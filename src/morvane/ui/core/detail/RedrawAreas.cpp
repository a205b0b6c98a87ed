#include <morvane/ui/core/detail/RedrawAreas.h>

#include <morvane/ui/core/DirtyRegion.h>
#include <morvane/ui/core/View.h>

#include <algorithm>
#include <cmath>

namespace morvane::ui::detail {

gfx::Rect shadowExtent(const gfx::Rect& shape, const gfx::Shadow& shadow) {
    double blur = std::max(0.0, shadow.radius) * 1.5;
    return shape.offsetBy(shadow.offset.width, shadow.offset.height).insetBy(-blur, -blur);
}

bool isDrawable(const PresentationState& s) {
    const gfx::Transform& t = s.transform;
    for (double v : {s.center.x, s.center.y, s.bounds.x, s.bounds.y, s.bounds.width, s.bounds.height, t.a,
                     t.b, t.c, t.d, t.tx, t.ty})
        if (!std::isfinite(v)) return false;
    return t.inverted().has_value();
}

void RedrawAreas::collect(View& root, double time, DirtyRegion& region) {
    RedrawAreas walk(region, time);
    gfx::Rect everything{-1e9, -1e9, 2e9, 2e9};
    walk.visit(root, nullptr, everything, Mode::Path);
}

void RedrawAreas::clearMarks(View& view) {
    view.needsDisplay_ = false;
    if (!view.subtreeNeedsDisplay_) return;
    view.subtreeNeedsDisplay_ = false;
    for (auto& child : view.subviews_)
        clearMarks(*child);
}

// `toWindow` maps the superview's content (its bounds coordinates) to the
// window; null for the root, whose frame-local space is the window's.
gfx::Rect RedrawAreas::visit(View& view, const gfx::Transform* toWindow, const gfx::Rect& clip, Mode mode) {
    bool marked = view.needsDisplay_;
    if (mode == Mode::Path && !marked && !view.subtreeNeedsDisplay_) return view.shownArea_;
    bool startsRedraw = mode == Mode::Path && marked;
    if (startsRedraw) {
        region_.add(view.shownArea_);
        mode = Mode::Redraw;
    }
    view.needsDisplay_ = false;

    PresentationState state = view.presentationAt(time_);
    bool root = toWindow == nullptr;
    if (view.hidden_ || (!root && state.alpha < kInvisibleAlpha) || state.bounds.isEmpty() ||
        !isDrawable(state)) {
        // Nothing of it shows, whatever changed inside.
        clearMarks(view);
        view.shownArea_ = {};
        return {};
    }
    view.subtreeNeedsDisplay_ = false;

    double width = state.bounds.width;
    double height = state.bounds.height;
    // Frame-local space (the view's own rectangle at the origin) to the window,
    // as the renderer places the view.
    gfx::Transform local;
    if (!root) {
        if (state.transform.isIdentity())
            local = gfx::Transform::translation(state.center.x - width / 2, state.center.y - height / 2);
        else
            local = gfx::Transform::translation(-width / 2, -height / 2)
                        .concatenated(state.transform)
                        .concatenated(gfx::Transform::translation(state.center.x, state.center.y));
        local = local.concatenated(*toWindow);
    }
    const Layer& layer = view.layer_;
    gfx::Rect box{0, 0, width, height};
    gfx::Point shift = layer.sublayerTranslation();
    double dx = shift.x - state.bounds.x;
    double dy = shift.y - state.bounds.y;

    gfx::Rect own = box;
    if (!layer.masksToBounds() && layer.shadow().isVisible())
        own = own.united(shadowExtent(box, layer.shadow()));
    gfx::Rect drawn = view.drawingRect().offsetBy(dx, dy);
    if (layer.masksToBounds()) drawn = drawn.intersection(box);
    own = own.united(drawn);

    gfx::Rect inner = clip;
    gfx::Rect area = local.apply(own);
    if (layer.mask()) {
        gfx::Rect mask = local.apply(layer.mask()->frame);
        area = area.intersection(mask);
        inner = inner.intersection(mask);
    }
    area = area.intersection(clip);
    if (layer.masksToBounds()) inner = inner.intersection(local.apply(box));

    gfx::Transform content = gfx::Transform::translation(dx, dy).concatenated(local);
    // Index loop with a held child: drawingRect() is a subclass's code.
    for (std::size_t i = 0; i < view.subviews_.size(); ++i) {
        auto child = view.subviews_[i];
        area = area.united(visit(*child, &content, inner, mode));
    }
    view.shownArea_ = area;
    if (startsRedraw) region_.add(area);
    return area;
}

} // namespace morvane::ui::detail
