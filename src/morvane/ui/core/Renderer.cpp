#include <morvane/ui/core/Renderer.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/ImageContext.h>
#include <morvane/sys/Clock.h>
#include <morvane/ui/core/View.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/core/detail/Animator.h>
#include <morvane/ui/core/detail/RedrawAreas.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace morvane::ui {

using detail::isDrawable;
using detail::kInvisibleAlpha;
using detail::shadowExtent;

namespace {

// True when the child paints every point of `area` (its parent's space)
// opaquely: an opaque square-cornered background over a frame that holds the
// area, drawn as it stands (no transform, fade, mask or running animation).
bool covers(const View& child, const gfx::Rect& area) {
    if (child.isHidden() || child.alpha() < 1 || child.backgroundColor().alpha < 1) return false;
    const gfx::Rect frame = child.frame();
    if (frame.x > area.x || frame.y > area.y || frame.maxX() < area.maxX() || frame.maxY() < area.maxY())
        return false;
    const Layer& layer = child.layer();
    return layer.cornerRadius() <= 0 && !layer.mask() && child.transform().isIdentity() &&
           !child.hasAnimations();
}

// The first child worth drawing: children before the last one that covers
// everything the canvas can still show would be painted over completely (a
// card laid over a whole screen, a page over the one before it).
std::size_t firstUncovered(const std::vector<std::shared_ptr<View>>& children, const gfx::Canvas& canvas) {
    if (children.size() < 2) return 0;
    const gfx::Rect visible = canvas.clipBounds();
    for (std::size_t i = children.size(); i-- > 1;)
        if (covers(*children[i], visible)) return i;
    return 0;
}

} // namespace

void Renderer::render(View& root, gfx::Canvas& canvas) {
    root.layoutIfNeeded();
    viewsDrawn_ = 0;
    ++framesRendered_;
    drawRoot(root, canvas, sys::Clock::now());
}

void Renderer::drawRoot(View& root, gfx::Canvas& canvas, double now) {
    auto state = root.presentationAt(now);
    if (root.isHidden() || state.bounds.isEmpty() || !isDrawable(state)) return;
    auto saved = canvas.saved();
    drawBody(root, canvas, state.bounds, now);
}

DirtyRegion Renderer::Frame::changed() const {
    DirtyRegion all = drawn;
    all.add(moved);
    return all;
}

Renderer::Frame Renderer::renderFrame(Window& window, gfx::Canvas& canvas, Redraw redraw) {
    window.layoutIfNeeded();
    viewsDrawn_ = 0;
    // One moment for the whole frame: the areas worked out and the views drawn
    // in them must agree, even on a clock that moves while the frame is drawn.
    double now = sys::Clock::now();
    bool whole = redraw == Redraw::Everything;
    Window::Changes changes = window.takeChanges(now, whole ? 0 : canvas.scale());
    gfx::Rect canvasArea{{0, 0}, canvas.size()};
    Frame frame;
    if (whole) {
        frame.drawn.add(canvasArea);
    } else {
        // Slid content first: the areas to draw are where things are after the moves.
        for (const Window::PixelMove& move : changes.moves) {
            gfx::Rect area = move.area.intersection(canvasArea);
            if (canvas.movePixels(area, move.by))
                frame.moved.add(area);
            else
                changes.region.add(area);
        }
        frame.drawn = changes.region.pixelAligned(canvas.scale(), canvasArea);
    }
    if (frame.isEmpty()) return frame;
    ++framesRendered_;
    // Each part separately, clipped to a box: a box clip keeps the fast fills
    // (a clip to several boxes at once would not), and outside the parts the
    // pixels of the last frame stay as they are.
    for (const gfx::Rect& part : frame.drawn.rects()) {
        auto saved = canvas.saved();
        canvas.clipToRect(part);
        canvas.clear(gfx::Color::whiteColor());
        drawRoot(window, canvas, now);
    }
    return frame;
}

gfx::Image Renderer::imageOf(View& view, double scale) {
    view.layoutIfNeeded();
    gfx::Rect bounds = view.presentation().bounds;
    if (bounds.isEmpty()) return {};
    gfx::ImageContext context(bounds.size(), gfx::Opacity::Transparent, scale);
    if (!context.isValid()) return {};
    {
        Renderer renderer;
        auto saved = context.canvas().saved();
        renderer.drawBody(view, context.canvas(), bounds, sys::Clock::now());
    }
    return context.takeImage();
}

void Renderer::drawView(View& view, gfx::Canvas& canvas, double now) {
    if (view.isHidden()) return;
    auto state = view.presentationAt(now);
    if (state.alpha < kInvisibleAlpha || state.bounds.isEmpty() || !isDrawable(state)) return;
    double width = state.bounds.width;
    double height = state.bounds.height;
    const Layer& layer = view.layer();

    auto saved = canvas.saved();
    if (state.transform.isIdentity()) {
        canvas.translate(state.center.x - width / 2, state.center.y - height / 2);
    } else {
        canvas.translate(state.center.x, state.center.y);
        canvas.concat(state.transform);
        canvas.translate(-width / 2, -height / 2);
    }

    // Off-screen views are skipped when nothing of them can reach the screen:
    // their children are clipped to them, or they have none.
    gfx::Rect extent{0, 0, width, height};
    if (layer.mask()) {
        extent = layer.mask()->frame;
    } else if (layer.masksToBounds() || view.subviews().empty()) {
        if (layer.shadow().isVisible() && !layer.masksToBounds())
            extent = extent.united(shadowExtent(extent, layer.shadow()));
        if (!canvas.isVisible(extent)) return;
    }

    const detail::Track* dissolve =
        view.animations_ && view.animations_->dissolve.runningAt(now) ? &view.animations_->dissolve : nullptr;
    // A view with children fades as one picture, as the platform composes a
    // layer tree; a single view can simply draw with less alpha.
    bool group = state.alpha < 1 && (!view.subviews().empty() || dissolve);
    if (group)
        canvas.beginTransparencyLayer();
    else if (state.alpha < 1)
        canvas.multiplyAlpha(state.alpha);

    if (dissolve) {
        // A true cross-fade: the old look at 1 - t and the new at t are added,
        // so an opaque view stays opaque all the way through.
        double t = dissolve->progress(now);
        canvas.beginTransparencyLayer();
        const gfx::Image& oldLook = view.animations_->oldLook;
        if (oldLook) {
            auto inner = canvas.saved();
            canvas.multiplyAlpha(1 - t);
            canvas.drawImage(oldLook, gfx::Rect{0, 0, width, height});
        }
        {
            auto inner = canvas.saved();
            canvas.setBlendMode(gfx::BlendMode::PlusLighter);
            canvas.beginTransparencyLayer();
            canvas.save();
            drawBody(view, canvas, state.bounds, now);
            canvas.restore();
            canvas.endTransparencyLayer(t);
        }
        canvas.endTransparencyLayer(1);
    } else if (group) {
        canvas.save();
        drawBody(view, canvas, state.bounds, now);
        canvas.restore();
    } else {
        drawBody(view, canvas, state.bounds, now);
    }

    if (group) canvas.endTransparencyLayer(state.alpha);
}

namespace {

// Opaque children that hide a background are looked for among this many at most.
constexpr std::size_t kMaxCovering = 64;
// The background is filled in at most this many pieces around them.
constexpr std::size_t kMaxPieces = 64;

struct PixelBox {
    double x0, y0, x1, y1;
    bool isEmpty() const { return !(x1 > x0 && y1 > y0); }
};

// Adds to `out` the parts of `box` outside `hole` (at most four).
void subtract(const PixelBox& box, const PixelBox& hole, std::vector<PixelBox>& out) {
    if (hole.x0 >= box.x1 || hole.x1 <= box.x0 || hole.y0 >= box.y1 || hole.y1 <= box.y0) {
        out.push_back(box);
        return;
    }
    double top = std::max(box.y0, hole.y0), bottom = std::min(box.y1, hole.y1);
    if (box.y0 < top) out.push_back({box.x0, box.y0, box.x1, top});
    if (bottom < box.y1) out.push_back({box.x0, bottom, box.x1, box.y1});
    if (box.x0 < hole.x0) out.push_back({box.x0, top, hole.x0, bottom});
    if (hole.x1 < box.x1) out.push_back({hole.x1, top, box.x1, bottom});
}

} // namespace

// A square background under children that cover most of it (rows that tile a
// screen, a cell's opaque content view) is filled only where it can show: the
// whole device pixels inside an opaque child are replaced by the child's own
// fill, so the background there would be painted for nothing. Pixels along a
// child's edge keep the background, which shows through their partial cover,
// so the result is the same to the bit.
void Renderer::fillBackground(View& view, gfx::Canvas& canvas, const gfx::Rect& local, gfx::Point shift,
                              double now) {
    const gfx::Color& color = view.backgroundColor();
    const auto& children = view.subviews();
    gfx::Transform t = canvas.transform();
    double s = canvas.scale();
    if (children.empty() || children.size() > kMaxCovering || t.b != 0 || t.c != 0 || !(t.a > 0) ||
        !(t.d > 0) || canvas.blendMode() != gfx::BlendMode::Normal || canvas.alpha() < 1) {
        canvas.fillRect(local, color);
        return;
    }
    auto device = [&](const gfx::Rect& r) {
        return PixelBox{(t.tx + t.a * r.minX()) * s, (t.ty + t.d * r.minY()) * s, (t.tx + t.a * r.maxX()) * s,
                        (t.ty + t.d * r.maxY()) * s};
    };
    PixelBox whole = device(local);
    std::vector<PixelBox> pieces{whole}, next;
    bool covered = false;
    for (const auto& child : children) {
        if (child->isHidden() || child->backgroundColor().alpha < 1) continue;
        const Layer& layer = child->layer();
        if (layer.cornerRadius() > 0 || layer.mask()) continue;
        if (child->animations_ && child->animations_->dissolve.runningAt(now)) continue;
        PresentationState state = child->presentationAt(now);
        if (state.alpha < 1 || !state.transform.isIdentity() || state.bounds.isEmpty() || !isDrawable(state))
            continue;
        PixelBox box = device({state.center.x - state.bounds.width / 2 + shift.x,
                               state.center.y - state.bounds.height / 2 + shift.y, state.bounds.width,
                               state.bounds.height});
        // Only pixels the child covers entirely; a hair inwards, so that a
        // rounding error never counts a partly covered pixel as covered.
        PixelBox inside{std::ceil(box.x0 + 1e-6), std::ceil(box.y0 + 1e-6), std::floor(box.x1 - 1e-6),
                        std::floor(box.y1 - 1e-6)};
        if (inside.isEmpty()) continue;
        next.clear();
        for (const PixelBox& piece : pieces)
            subtract(piece, inside, next);
        if (next.size() > kMaxPieces) break;
        pieces.swap(next);
        covered = true;
    }
    if (!covered) {
        canvas.fillRect(local, color);
        return;
    }
    for (const PixelBox& piece : pieces) {
        // Each piece has whole-pixel edges where it meets a child, and the
        // background's own edges elsewhere; clipped out to the pixel, the fill
        // draws its own partial edges as ever.
        PixelBox clip{std::floor(piece.x0), std::floor(piece.y0), std::ceil(piece.x1), std::ceil(piece.y1)};
        if (clip.isEmpty()) continue;
        auto saved = canvas.saved();
        canvas.clipToRect({(clip.x0 / s - t.tx) / t.a, (clip.y0 / s - t.ty) / t.d,
                           (clip.x1 - clip.x0) / s / t.a, (clip.y1 - clip.y0) / s / t.d});
        canvas.fillRect(local, color);
    }
}

// Draws the view in its frame-local space. The caller saves and restores the
// canvas state around it: clips and translations made here are not undone,
// which saves two state copies per view (the border lies inside the rounded
// bounds, so the content clip does not cut it).
void Renderer::drawBody(View& view, gfx::Canvas& canvas, const gfx::Rect& bounds, double now) {
    ++viewsDrawn_;
    const Layer& layer = view.layer();
    gfx::Rect local{0, 0, bounds.width, bounds.height};
    double radius = std::max(0.0, layer.cornerRadius());

    if (layer.mask()) canvas.clipToRoundedRect(layer.mask()->frame, layer.mask()->cornerRadius);
    // Masking to bounds cuts the shadow off too, as on the platform.
    if (!layer.masksToBounds() && layer.shadow().isVisible())
        canvas.drawShadow(local, radius, layer.shadow());
    gfx::Point shift = layer.sublayerTranslation();
    double dx = shift.x - bounds.x;
    double dy = shift.y - bounds.y;
    const gfx::Color& background = view.backgroundColor();
    if (background.alpha > 0) {
        if (radius > 0)
            canvas.fillRoundedRect(local, radius, background);
        else
            fillBackground(view, canvas, local, {dx, dy}, now);
    }

    if (layer.masksToBounds()) {
        if (radius > 0)
            canvas.clipToRoundedRect(local, radius);
        else
            canvas.clipToRect(local);
    }
    bool moved = dx != 0 || dy != 0;
    if (moved) canvas.translate(dx, dy);
    view.draw(canvas, bounds);
    // Index loop with a held child: a misbehaving draw() may change the tree.
    const auto& children = view.subviews();
    for (std::size_t i = firstUncovered(children, canvas); i < children.size(); ++i) {
        auto child = children[i];
        drawView(*child, canvas, now);
    }
    if (moved) canvas.translate(-dx, -dy);

    double border = layer.borderWidth();
    if (border > 0 && layer.borderColor().alpha > 0) {
        // The border lies inside the bounds, following the rounded corners.
        gfx::Rect line = local.insetBy(border / 2, border / 2);
        if (!line.isEmpty())
            canvas.strokeRoundedRect(line, std::max(0.0, radius - border / 2), layer.borderColor(), border);
    }
}

} // namespace morvane::ui
