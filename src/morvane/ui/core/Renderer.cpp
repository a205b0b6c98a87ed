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

namespace morvane::ui {

using detail::isDrawable;
using detail::kInvisibleAlpha;
using detail::shadowExtent;

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
    const gfx::Color& background = view.backgroundColor();
    if (background.alpha > 0) {
        if (radius > 0)
            canvas.fillRoundedRect(local, radius, background);
        else
            canvas.fillRect(local, background);
    }

    if (layer.masksToBounds()) {
        if (radius > 0)
            canvas.clipToRoundedRect(local, radius);
        else
            canvas.clipToRect(local);
    }
    gfx::Point shift = layer.sublayerTranslation();
    double dx = shift.x - bounds.x;
    double dy = shift.y - bounds.y;
    bool moved = dx != 0 || dy != 0;
    if (moved) canvas.translate(dx, dy);
    view.draw(canvas, bounds);
    // Index loop with a held child: a misbehaving draw() may change the tree.
    const auto& children = view.subviews();
    for (std::size_t i = 0; i < children.size(); ++i) {
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
