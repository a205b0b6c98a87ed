#include <morvane/ui/core/detail/RedrawAreas.h>

#include <morvane/ui/core/DirtyRegion.h>
#include <morvane/ui/core/View.h>
#include <morvane/ui/core/detail/Animator.h>

#include <algorithm>
#include <cmath>

namespace morvane::ui::detail {

namespace {

// A coordinate that is a whole number of device pixels, within rounding.
bool isWhole(double pixels) {
    return std::abs(pixels - std::round(pixels)) < 1e-6;
}

} // namespace

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

void RedrawAreas::collect(Window& window, double time, double scale, const DirtyRegion& removed,
                          Window::Changes& changes) {
    changes.region.add(removed);
    RedrawAreas walk(changes, time, scale);
    Context top;
    top.clip = {-1e9, -1e9, 2e9, 2e9};
    walk.visit(window, top, Mode::Path);
    // A view removed from inside content that slid left its pixels where the move took them.
    for (const Window::PixelMove& move : changes.moves)
        for (const gfx::Rect& r : removed.rects())
            changes.region.add(r.offsetBy(-move.by.x, -move.by.y).intersection(move.area));
}

void RedrawAreas::clearMarks(View& view) {
    view.needsDisplay_ = false;
    view.contentMoved_ = false;
    if (!view.subtreeNeedsDisplay_) return;
    view.subtreeNeedsDisplay_ = false;
    for (auto& child : view.subviews_)
        clearMarks(*child);
}

gfx::Rect RedrawAreas::visit(View& view, const Context& context, Mode mode) {
    if (mode == Mode::Path && !view.subtreeNeedsDisplay_) return view.shownArea_;
    // Where a changed view showed must be drawn over; inside slid content,
    // that is where the move took its old pixels.
    bool startsRedraw = false;
    if (mode == Mode::Path && view.needsDisplay_) {
        changes_.region.add(view.shownArea_);
        startsRedraw = true;
    } else if (mode == Mode::Moved && (view.needsDisplay_ || view.contentMoved_)) {
        changes_.region.add(view.shownArea_.offsetBy(-move_.by.x, -move_.by.y).intersection(move_.area));
        startsRedraw = true;
    }
    if (startsRedraw) mode = Mode::Redraw;
    bool slid = mode == Mode::Path && view.contentMoved_;
    gfx::Point slidFrom = view.shownOrigin_;
    view.needsDisplay_ = false;
    view.contentMoved_ = false;

    PresentationState state = view.presentationAt(time_);
    bool root = context.toWindow == nullptr;
    if (view.hidden_ || (!root && state.alpha < kInvisibleAlpha) || state.bounds.isEmpty() ||
        !isDrawable(state)) {
        // Nothing of it shows, whatever changed inside.
        if (slid) changes_.region.add(view.shownArea_);
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
        local = local.concatenated(*context.toWindow);
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

    Context inner = context;
    gfx::Transform content = gfx::Transform::translation(dx, dy).concatenated(local);
    inner.toWindow = &content;
    gfx::Rect area = local.apply(own);
    if (layer.mask()) {
        gfx::Rect mask = local.apply(layer.mask()->frame);
        area = area.intersection(mask);
        inner.clip = inner.clip.intersection(mask);
    }
    area = area.intersection(context.clip);
    gfx::Rect frame = local.apply(box).intersection(context.clip);
    if (layer.masksToBounds()) inner.clip = inner.clip.intersection(frame);
    bool dissolving = view.animations_ && view.animations_->dissolve.runningAt(time_);
    double radius = std::max(0.0, layer.cornerRadius());
    bool bordered = layer.borderWidth() > 0 && layer.borderColor().alpha > 0;
    inner.plain = context.plain && (root || state.alpha >= 1) && !dissolving && !layer.mask() &&
                  !(layer.masksToBounds() && radius > 0) && !bordered;

    Mode childMode = mode;
    if (slid) {
        gfx::Point by{state.bounds.x - slidFrom.x, state.bounds.y - slidFrom.y};
        if (startMove(view, frame, context, by)) {
            childMode = Mode::Moved;
        } else {
            changes_.region.add(view.shownArea_);
            startsRedraw = true;
            childMode = Mode::Redraw;
        }
    }
    // Index loop with a held child: drawingRect() is a subclass's code.
    for (std::size_t i = 0; i < view.subviews_.size(); ++i) {
        auto child = view.subviews_[i];
        area = area.united(visit(*child, inner, childMode));
    }
    view.shownArea_ = area;
    if (startsRedraw) changes_.region.add(area);
    return area;
}

// The content of `view` slid by `by` (points) and nothing else about it
// changed since the last frame (or it would be marked), nor about its
// ancestors (or the walk would not be following marks here). Its pixels can
// move when all it draws slides with its bounds origin (slidesContent) and
// everything on them is the view's own: an opaque background
// without rounded corners or border under content clipped to the bounds,
// placed by a plain translation, under ancestors that neither fade nor cut it
// with anything but boxes, and a slide of whole device pixels.
bool RedrawAreas::startMove(View& view, const gfx::Rect& frame, const Context& context, gfx::Point by) {
    if (!(scale_ > 0) || !context.plain || !view.slidesContent()) return false;
    const Layer& layer = view.layer_;
    if (!layer.masksToBounds() || layer.mask() || layer.cornerRadius() > 0 ||
        view.backgroundColor_.alpha < 1 || view.alpha_ < 1 ||
        (layer.borderWidth() > 0 && layer.borderColor().alpha > 0))
        return false;
    if (view.animations_ && view.animations_->runningAt(time_)) return false;
    if (context.toWindow) {
        const gfx::Transform& t = *context.toWindow;
        if (t.a != 1 || t.b != 0 || t.c != 0 || t.d != 1 || !view.transform_.isIdentity()) return false;
    }
    if (!isWhole(by.x * scale_) || !isWhole(by.y * scale_)) return false;
    // The whole device pixels inside the view's frame: the pixels at its
    // edges are partly what lies behind, which does not slide.
    double x0 = std::ceil(frame.minX() * scale_ - 1e-6), y0 = std::ceil(frame.minY() * scale_ - 1e-6);
    double x1 = std::floor(frame.maxX() * scale_ + 1e-6), y1 = std::floor(frame.maxY() * scale_ + 1e-6);
    if (!(x1 > x0 && y1 > y0)) return false;
    gfx::Rect inside{x0 / scale_, y0 / scale_, (x1 - x0) / scale_, (y1 - y0) / scale_};
    if (std::abs(by.x) >= inside.width || std::abs(by.y) >= inside.height) return false;
    // Two moves over the same pixels would read each other's results.
    for (const Window::PixelMove& other : changes_.moves)
        if (other.area.intersects(inside)) return false;

    // Views drawn after this one may lie over it: their pixels must not
    // move. Where they were is drawn again, and where the move took them.
    // An ancestor's border is drawn after its children too.
    DirtyRegion& region = changes_.region;
    for (const View* v = &view; v->superview_; v = v->superview_) {
        const View* parent = v->superview_;
        const auto& siblings = parent->subviews_;
        auto at = std::find_if(siblings.begin(), siblings.end(), [&](auto& s) { return s.get() == v; });
        for (auto it = at == siblings.end() ? at : at + 1; it != siblings.end(); ++it) {
            const gfx::Rect& over = (*it)->shownArea_;
            if (!over.intersects(inside)) continue;
            region.add(over.intersection(inside));
            region.add(over.offsetBy(-by.x, -by.y).intersection(inside));
        }
    }
    // What the slide uncovers, and the edge pixels.
    gfx::Rect kept = inside.intersection(inside.offsetBy(-by.x, -by.y));
    region.add({inside.x, inside.y, inside.width, kept.y - inside.y});
    region.add({inside.x, kept.maxY(), inside.width, inside.maxY() - kept.maxY()});
    region.add({inside.x, kept.y, kept.x - inside.x, kept.height});
    region.add({kept.maxX(), kept.y, inside.maxX() - kept.maxX(), kept.height});
    region.add({frame.x, frame.y, frame.width, inside.y - frame.y});
    region.add({frame.x, inside.maxY(), frame.width, frame.maxY() - inside.maxY()});
    region.add({frame.x, inside.y, inside.x - frame.x, inside.height});
    region.add({inside.maxX(), inside.y, frame.maxX() - inside.maxX(), inside.height});
    changes_.moves.push_back({inside, by});
    move_ = changes_.moves.back();
    return true;
}

} // namespace morvane::ui::detail
