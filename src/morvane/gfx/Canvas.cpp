#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/detail/BoxFill.h>
#include <morvane/gfx/detail/CanvasImpl.h>
#include <morvane/gfx/detail/ImageAccess.h>
#include <morvane/gfx/detail/ShadowMask.h>
#include <morvane/gfx/detail/TextEngine.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace morvane::gfx {

namespace {

// Pictures drawn larger than this many device pixels are resampled on every
// draw instead of kept resampled beside the image (a full-screen photo at
// scale 3 is about 3 million).
constexpr double kLargestResampled = 4096.0 * 4096.0;

cairo_operator_t toCairo(BlendMode mode) {
    switch (mode) {
    case BlendMode::Normal:
        return CAIRO_OPERATOR_OVER;
    case BlendMode::Multiply:
        return CAIRO_OPERATOR_MULTIPLY;
    case BlendMode::Screen:
        return CAIRO_OPERATOR_SCREEN;
    case BlendMode::Overlay:
        return CAIRO_OPERATOR_OVERLAY;
    case BlendMode::Darken:
        return CAIRO_OPERATOR_DARKEN;
    case BlendMode::Lighten:
        return CAIRO_OPERATOR_LIGHTEN;
    case BlendMode::Clear:
        return CAIRO_OPERATOR_CLEAR;
    case BlendMode::Copy:
        return CAIRO_OPERATOR_SOURCE;
    case BlendMode::SourceIn:
        return CAIRO_OPERATOR_IN;
    case BlendMode::SourceOut:
        return CAIRO_OPERATOR_OUT;
    case BlendMode::SourceAtop:
        return CAIRO_OPERATOR_ATOP;
    case BlendMode::DestinationOver:
        return CAIRO_OPERATOR_DEST_OVER;
    case BlendMode::DestinationIn:
        return CAIRO_OPERATOR_DEST_IN;
    case BlendMode::DestinationOut:
        return CAIRO_OPERATOR_DEST_OUT;
    case BlendMode::DestinationAtop:
        return CAIRO_OPERATOR_DEST_ATOP;
    case BlendMode::Xor:
        return CAIRO_OPERATOR_XOR;
    case BlendMode::PlusLighter:
        return CAIRO_OPERATOR_ADD;
    }
    return CAIRO_OPERATOR_OVER;
}

// Cairo lets these operators reach outside the drawn shape (clearing the rest
// of the clip); the platform confines every operator to the shape, so these
// draw through a clip to the shape instead.
bool isUnbounded(BlendMode mode) {
    return mode == BlendMode::Copy || mode == BlendMode::SourceIn || mode == BlendMode::SourceOut ||
           mode == BlendMode::DestinationIn || mode == BlendMode::DestinationAtop;
}

double clamp01(double v) {
    return std::isnan(v) ? 0 : std::clamp(v, 0.0, 1.0);
}

bool finiteRect(const Rect& r) {
    return std::isfinite(r.x) && std::isfinite(r.y) && std::isfinite(r.width) && std::isfinite(r.height);
}

void appendPath(cairo_t* cr, const Path& path) {
    for (const Path::Element& e : path.elements()) {
        const double* v = e.values;
        switch (e.kind) {
        case Path::Kind::Move:
            cairo_move_to(cr, v[0], v[1]);
            break;
        case Path::Kind::Line:
            cairo_line_to(cr, v[0], v[1]);
            break;
        case Path::Kind::Curve:
            cairo_curve_to(cr, v[0], v[1], v[2], v[3], v[4], v[5]);
            break;
        case Path::Kind::Arc:
            if (v[5] != 0)
                cairo_arc(cr, v[0], v[1], v[2], v[3], v[4]);
            else
                cairo_arc_negative(cr, v[0], v[1], v[2], v[3], v[4]);
            break;
        case Path::Kind::Close:
            cairo_close_path(cr);
            break;
        }
    }
}

void appendRoundedRect(cairo_t* cr, const Rect& rect, double cornerRadius) {
    Rect r = rect.standardized();
    double radius = std::clamp(cornerRadius, 0.0, std::min(r.width, r.height) / 2);
    if (!(radius > 0)) {
        cairo_rectangle(cr, r.x, r.y, r.width, r.height);
        return;
    }
    constexpr double pi = 3.14159265358979323846;
    cairo_new_sub_path(cr);
    cairo_arc(cr, r.maxX() - radius, r.y + radius, radius, -pi / 2, 0);
    cairo_arc(cr, r.maxX() - radius, r.maxY() - radius, radius, 0, pi / 2);
    cairo_arc(cr, r.x + radius, r.maxY() - radius, radius, pi / 2, pi);
    cairo_arc(cr, r.x + radius, r.y + radius, radius, pi, 3 * pi / 2);
    cairo_close_path(cr);
}

} // namespace

Canvas::Impl::Impl(cairo_surface_t* target, double deviceScale) : surface(target), scale(deviceScale) {
    cairo_surface_set_device_scale(surface, scale, scale);
    cr = cairo_create(surface);
    directPixels = cairo_surface_get_type(surface) == CAIRO_SURFACE_TYPE_IMAGE &&
                   cairo_image_surface_get_format(surface) == CAIRO_FORMAT_ARGB32 &&
                   cairo_image_surface_get_data(surface) != nullptr;
    if (directPixels) {
        state.clipX1 = cairo_image_surface_get_width(surface);
        state.clipY1 = cairo_image_surface_get_height(surface);
    }
    // At scale 2 and 3 a device pixel is small enough that a coarser curve
    // flattening and Cairo's cheaper 4 x 4 coverage grid look the same as the
    // defaults, at about half the cost per shape; at scale 1 keep full quality.
    if (scale >= 2) {
        cairo_set_tolerance(cr, 0.3);
        cairo_set_antialias(cr, CAIRO_ANTIALIAS_FAST);
    }
}

Canvas::Impl::~Impl() {
    if (pixels) pixman_image_unref(pixels);
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
}

void Canvas::Impl::setSource(const Color& color) {
    cairo_set_source_rgba(cr, clamp01(color.red), clamp01(color.green), clamp01(color.blue),
                          clamp01(color.alpha) * state.alpha);
}

void Canvas::Impl::trackClip(const Rect& rect, bool isBox) {
    if (!state.clipIsBox) return;
    cairo_matrix_t m;
    cairo_get_matrix(cr, &m);
    if (!isBox || m.xy != 0 || m.yx != 0) {
        state.clipIsBox = false;
        return;
    }
    // An edge meant for a pixel boundary (a region aligned to pixels at scale
    // 3, say) may land a rounding error off it; it is taken as on it, as
    // Cairo's fixed-point coordinates take it, so fills there stay direct.
    auto device = [this](double v) {
        double pixels = v * scale;
        double nearest = std::round(pixels);
        return std::abs(pixels - nearest) < 1e-7 ? nearest : pixels;
    };
    double ax = device(m.x0 + m.xx * rect.x), bx = device(m.x0 + m.xx * rect.maxX());
    double ay = device(m.y0 + m.yy * rect.y), by = device(m.y0 + m.yy * rect.maxY());
    state.clipX0 = std::max(state.clipX0, std::min(ax, bx));
    state.clipX1 = std::min(state.clipX1, std::max(ax, bx));
    state.clipY0 = std::max(state.clipY0, std::min(ay, by));
    state.clipY1 = std::min(state.clipY1, std::max(ay, by));
}

namespace {

// Whether the pixels [first, last) reach a pixel that a clip edge at `edge`
// cuts partly (such a pixel needs Cairo's clip coverage).
bool touchesPartialPixel(double edge, int first, int last) {
    double cut = std::floor(edge);
    return cut != edge && cut >= first && cut < last;
}

} // namespace

bool Canvas::Impl::fillDirect(const Rect& outer, double outerRadius, const Rect* inner, double innerRadius,
                              const Color& color) {
    // Scale 1 stays with Cairo's finer coverage; at 2 and 3 the difference is
    // below what a device pixel shows.
    if (!directPixels || scale < 2 || state.blend != BlendMode::Normal || !state.clipIsBox) return false;
    if (cairo_get_group_target(cr) != surface) return false; // inside a transparency layer
    cairo_matrix_t m;
    cairo_get_matrix(cr, &m);
    if (m.xy != 0 || m.yx != 0 || !(m.xx > 0) || !(m.yy > 0)) return false;
    // Round corners need the same scale on both axes.
    if ((outerRadius > 0 || innerRadius > 0) && m.xx != m.yy) return false;
    auto device = [&](const Rect& r, double radius) {
        return detail::DeviceBox{(m.x0 + m.xx * r.x) * scale, (m.y0 + m.yy * r.y) * scale,
                                 (m.x0 + m.xx * r.maxX()) * scale, (m.y0 + m.yy * r.maxY()) * scale,
                                 radius * m.xx * scale};
    };
    detail::DeviceBox box = device(outer, outerRadius);
    for (double v : {box.x0, box.y0, box.x1, box.y1, box.radius})
        if (!std::isfinite(v) || std::abs(v) > 1e7) return false;
    int first = static_cast<int>(std::floor(box.x0)), last = static_cast<int>(std::ceil(box.x1));
    int top = static_cast<int>(std::floor(box.y0)), bottom = static_cast<int>(std::ceil(box.y1));
    if (touchesPartialPixel(state.clipX0, first, last) || touchesPartialPixel(state.clipX1, first, last) ||
        touchesPartialPixel(state.clipY0, top, bottom) || touchesPartialPixel(state.clipY1, top, bottom))
        return false;

    detail::PixelTarget target{
        cairo_image_surface_get_data(surface),      cairo_image_surface_get_stride(surface),
        static_cast<int>(std::ceil(state.clipX0)),  static_cast<int>(std::ceil(state.clipY0)),
        static_cast<int>(std::floor(state.clipX1)), static_cast<int>(std::floor(state.clipY1))};
    Color tone = color.clamped();
    double alpha = tone.alpha * state.alpha;
    detail::PremultipliedColor premultiplied{Color::toByte(alpha), Color::toByte(tone.red * alpha),
                                             Color::toByte(tone.green * alpha),
                                             Color::toByte(tone.blue * alpha)};
    detail::DeviceBox hole{};
    if (inner) hole = device(*inner, innerRadius);
    // Cairo may hold the pixels elsewhere or share them with a snapshot until flushed.
    cairo_surface_flush(surface);
    // Whole pixels go to pixman, whose filling and blending use vector instructions.
    if (!pixels)
        pixels = pixman_image_create_bits(PIXMAN_a8r8g8b8, cairo_image_surface_get_width(surface),
                                          cairo_image_surface_get_height(surface),
                                          reinterpret_cast<std::uint32_t*>(target.data), target.stride);
    struct Solid {
        pixman_image_t* target;
        pixman_image_t* source;
        detail::PremultipliedColor color;
    } solid{pixels, nullptr, premultiplied};
    auto fillSolid = [](void* context, int x, int y, int w, int h) {
        auto* s = static_cast<Solid*>(context);
        const detail::PremultipliedColor& c = s->color;
        if (c.a == 255) {
            std::uint32_t value = 0xff000000u | std::uint32_t(c.r) << 16 | std::uint32_t(c.g) << 8 | c.b;
            pixman_fill(pixman_image_get_data(s->target), pixman_image_get_stride(s->target) / 4, 32, x, y, w,
                        h, value);
            return;
        }
        if (!s->source) {
            pixman_color_t color{std::uint16_t(c.r * 257), std::uint16_t(c.g * 257), std::uint16_t(c.b * 257),
                                 std::uint16_t(c.a * 257)};
            s->source = pixman_image_create_solid_fill(&color);
        }
        pixman_image_composite32(PIXMAN_OP_OVER, s->source, nullptr, s->target, 0, 0, 0, 0, x, y, w, h);
    };
    detail::fillBox(target, box, inner ? &hole : nullptr, premultiplied, {fillSolid, &solid});
    if (solid.source) pixman_image_unref(solid.source);
    int x0 = std::max(first, target.clipX0), y0 = std::max(top, target.clipY0);
    int x1 = std::min(last, target.clipX1), y1 = std::min(bottom, target.clipY1);
    if (x0 < x1 && y0 < y1) cairo_surface_mark_dirty_rectangle(surface, x0, y0, x1 - x0, y1 - y0);
    return true;
}

// An outline is the ring between the shape grown and shrunk by half the line:
// round corners grow with it, square ones stay square (Cairo's mitred joins).
bool Canvas::Impl::strokeDirect(const Rect& rect, double cornerRadius, const Color& color, double lineWidth) {
    if (!std::isfinite(lineWidth) || !std::isfinite(cornerRadius)) return false;
    double radius = std::clamp(cornerRadius, 0.0, std::min(rect.width, rect.height) / 2);
    double half = lineWidth / 2;
    Rect outer = rect.insetBy(-half, -half);
    Rect inner = rect.insetBy(half, half);
    bool hollow = rect.width > lineWidth && rect.height > lineWidth;
    return fillDirect(outer, radius > 0 ? radius + half : 0, hollow ? &inner : nullptr,
                      std::max(0.0, radius - half), color);
}

// Fills or strokes the current path with the current source, honouring the
// blend mode's reach.
void Canvas::Impl::finish(bool stroke) {
    if (!isUnbounded(state.blend)) {
        stroke ? cairo_stroke(cr) : cairo_fill(cr);
        return;
    }
    if (stroke) {
        // Confine to the stroke's outline: stroke into a group, then compose.
        cairo_push_group(cr);
        cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
        cairo_stroke(cr);
        cairo_pattern_t* group = cairo_pop_group(cr);
        cairo_set_operator(cr, toCairo(state.blend));
        cairo_mask(cr, group);
        cairo_pattern_destroy(group);
        return;
    }
    cairo_save(cr);
    cairo_clip(cr);
    cairo_paint(cr);
    cairo_restore(cr);
}

Canvas::Canvas(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Canvas::~Canvas() = default;

std::unique_ptr<Canvas> Canvas::overPixels(std::uint8_t* data, int pixelWidth, int pixelHeight, int stride,
                                           double scale) {
    if (!data || pixelWidth <= 0 || pixelHeight <= 0 || stride < pixelWidth * 4) return nullptr;
    cairo_surface_t* surface =
        cairo_image_surface_create_for_data(data, CAIRO_FORMAT_ARGB32, pixelWidth, pixelHeight, stride);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return nullptr;
    }
    if (!(scale > 0) || !std::isfinite(scale)) scale = 1;
    return std::unique_ptr<Canvas>(new Canvas(std::make_unique<Impl>(surface, scale)));
}

double Canvas::scale() const {
    return impl_->scale;
}

Size Canvas::size() const {
    return {cairo_image_surface_get_width(impl_->surface) / impl_->scale,
            cairo_image_surface_get_height(impl_->surface) / impl_->scale};
}

// ---- State ------------------------------------------------------------------

void Canvas::save() {
    cairo_save(impl_->cr);
    impl_->stack.push_back(impl_->state);
}

void Canvas::restore() {
    if (impl_->stack.empty()) return;
    if (impl_->stack.back().layer) return; // a transparency layer must be ended, not restored
    cairo_restore(impl_->cr);
    impl_->state = impl_->stack.back();
    impl_->stack.pop_back();
}

void Canvas::translate(double dx, double dy) {
    cairo_translate(impl_->cr, dx, dy);
}
void Canvas::scaleBy(double sx, double sy) {
    if (sx != 0 && sy != 0 && std::isfinite(sx) && std::isfinite(sy)) cairo_scale(impl_->cr, sx, sy);
}
void Canvas::rotate(double angle) {
    cairo_rotate(impl_->cr, angle);
}

void Canvas::concat(const Transform& t) {
    if (!t.inverted()) return; // a collapsed transform would put Cairo in an error state
    cairo_matrix_t m{t.a, t.b, t.c, t.d, t.tx, t.ty};
    cairo_transform(impl_->cr, &m);
}

Transform Canvas::transform() const {
    cairo_matrix_t m;
    cairo_get_matrix(impl_->cr, &m);
    return {m.xx, m.yx, m.xy, m.yy, m.x0, m.y0};
}

void Canvas::multiplyAlpha(double alpha) {
    impl_->state.alpha *= clamp01(alpha);
}
double Canvas::alpha() const {
    return impl_->state.alpha;
}

void Canvas::setBlendMode(BlendMode mode) {
    impl_->state.blend = mode;
    cairo_set_operator(impl_->cr, toCairo(mode));
}

BlendMode Canvas::blendMode() const {
    return impl_->state.blend;
}

void Canvas::beginTransparencyLayer() {
    cairo_save(impl_->cr);
    Impl::State saved = impl_->state;
    saved.layer = true;
    impl_->stack.push_back(saved);
    cairo_push_group(impl_->cr);
    // Inside the layer drawing starts opaque and normal; the layer's own alpha
    // and blend mode apply when it is composed.
    impl_->state.alpha = 1;
    impl_->state.blend = BlendMode::Normal;
    cairo_set_operator(impl_->cr, CAIRO_OPERATOR_OVER);
}

void Canvas::endTransparencyLayer(double alpha) {
    // Unwind plain saves made inside the layer, then compose it.
    while (!impl_->stack.empty() && !impl_->stack.back().layer)
        restore();
    if (impl_->stack.empty()) return;
    // The group is taken as a pattern before the restore: the source is part
    // of the saved state, so a group set as source would be undone by it.
    cairo_pattern_t* group = cairo_pop_group(impl_->cr);
    Impl::State outer = impl_->stack.back();
    impl_->stack.pop_back();
    cairo_restore(impl_->cr);
    impl_->state = outer;
    impl_->state.layer = false;
    cairo_set_source(impl_->cr, group);
    cairo_paint_with_alpha(impl_->cr, clamp01(alpha) * impl_->state.alpha);
    cairo_pattern_destroy(group);
}

// ---- Clipping ---------------------------------------------------------------

void Canvas::clipToRect(const Rect& rect) {
    if (!finiteRect(rect)) return;
    Rect r = rect.standardized();
    impl_->trackClip(r, true);
    cairo_rectangle(impl_->cr, r.x, r.y, r.width, r.height);
    cairo_clip(impl_->cr);
}

void Canvas::clipToRoundedRect(const Rect& rect, double cornerRadius) {
    if (!finiteRect(rect)) return;
    Rect r = rect.standardized();
    impl_->trackClip(r, !(std::clamp(cornerRadius, 0.0, std::min(r.width, r.height) / 2) > 0));
    appendRoundedRect(impl_->cr, rect, cornerRadius);
    cairo_clip(impl_->cr);
}

void Canvas::clipToPath(const Path& path, FillRule rule) {
    impl_->state.clipIsBox = false;
    cairo_new_path(impl_->cr);
    appendPath(impl_->cr, path);
    cairo_set_fill_rule(impl_->cr,
                        rule == FillRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
    cairo_clip(impl_->cr);
    cairo_set_fill_rule(impl_->cr, CAIRO_FILL_RULE_WINDING);
}

Rect Canvas::clipBounds() const {
    double x1, y1, x2, y2;
    cairo_clip_extents(impl_->cr, &x1, &y1, &x2, &y2);
    return {x1, y1, x2 - x1, y2 - y1};
}

bool Canvas::isVisible(const Rect& rect) const {
    return clipBounds().intersects(rect.standardized());
}

// ---- Fills and strokes --------------------------------------------------------

void Canvas::clear(const Color& color) {
    cairo_t* cr = impl_->cr;
    cairo_save(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgba(cr, clamp01(color.red), clamp01(color.green), clamp01(color.blue),
                          clamp01(color.alpha));
    cairo_paint(cr);
    cairo_restore(cr);
}

bool Canvas::movePixels(const Rect& area, Point by) {
    if (!impl_->directPixels || cairo_get_group_target(impl_->cr) != impl_->surface) return false;
    double s = impl_->scale;
    double values[] = {area.x * s, area.y * s, area.maxX() * s, area.maxY() * s, by.x * s, by.y * s};
    long whole[6];
    for (int i = 0; i < 6; ++i) {
        if (!std::isfinite(values[i]) || std::abs(values[i]) > 1e7) return false;
        double nearest = std::round(values[i]);
        if (std::abs(values[i] - nearest) > 1e-6) return false;
        whole[i] = static_cast<long>(nearest);
    }
    cairo_surface_t* surface = impl_->surface;
    long width = cairo_image_surface_get_width(surface), height = cairo_image_surface_get_height(surface);
    long x0 = std::max(0L, whole[0]), y0 = std::max(0L, whole[1]);
    long x1 = std::min(width, whole[2]), y1 = std::min(height, whole[3]);
    long dx = whole[4], dy = whole[5];
    // Destinations whose source lies in the area too.
    long tx0 = std::max(x0, x0 - dx), tx1 = std::min(x1, x1 - dx);
    long ty0 = std::max(y0, y0 - dy), ty1 = std::min(y1, y1 - dy);
    if (tx0 >= tx1 || ty0 >= ty1) return true;
    cairo_surface_flush(surface);
    std::uint8_t* data = cairo_image_surface_get_data(surface);
    long stride = cairo_image_surface_get_stride(surface);
    std::size_t bytes = static_cast<std::size_t>(tx1 - tx0) * 4;
    // Rows in the order that never reads a row already overwritten.
    auto moveRow = [&](long y) {
        std::memmove(data + y * stride + tx0 * 4, data + (y + dy) * stride + (tx0 + dx) * 4, bytes);
    };
    if (dy >= 0)
        for (long y = ty0; y < ty1; ++y)
            moveRow(y);
    else
        for (long y = ty1 - 1; y >= ty0; --y)
            moveRow(y);
    cairo_surface_mark_dirty_rectangle(surface, static_cast<int>(tx0), static_cast<int>(ty0),
                                       static_cast<int>(tx1 - tx0), static_cast<int>(ty1 - ty0));
    return true;
}

void Canvas::fillRect(const Rect& rect, const Color& color) {
    if (rect.isEmpty() || !finiteRect(rect)) return;
    Rect r = rect.standardized();
    if (impl_->fillDirect(r, 0, nullptr, 0, color)) return;
    cairo_rectangle(impl_->cr, r.x, r.y, r.width, r.height);
    impl_->setSource(color);
    impl_->finish(false);
}

void Canvas::strokeRect(const Rect& rect, const Color& color, double lineWidth) {
    if (!(lineWidth > 0) || !finiteRect(rect)) return;
    Rect r = rect.standardized();
    if (impl_->strokeDirect(r, 0, color, lineWidth)) return;
    cairo_rectangle(impl_->cr, r.x, r.y, r.width, r.height);
    cairo_set_line_width(impl_->cr, lineWidth);
    impl_->setSource(color);
    impl_->finish(true);
}

void Canvas::fillRoundedRect(const Rect& rect, double cornerRadius, const Color& color) {
    if (rect.isEmpty() || !finiteRect(rect)) return;
    Rect r = rect.standardized();
    if (impl_->fillDirect(r, std::clamp(cornerRadius, 0.0, std::min(r.width, r.height) / 2), nullptr, 0,
                          color))
        return;
    appendRoundedRect(impl_->cr, rect, cornerRadius);
    impl_->setSource(color);
    impl_->finish(false);
}

void Canvas::strokeRoundedRect(const Rect& rect, double cornerRadius, const Color& color, double lineWidth) {
    if (!(lineWidth > 0) || !finiteRect(rect)) return;
    if (impl_->strokeDirect(rect.standardized(), cornerRadius, color, lineWidth)) return;
    appendRoundedRect(impl_->cr, rect, cornerRadius);
    cairo_set_line_width(impl_->cr, lineWidth);
    impl_->setSource(color);
    impl_->finish(true);
}

void Canvas::fillEllipse(const Rect& rect, const Color& color) {
    fillPath(Path::ellipse(rect), color);
}

void Canvas::strokeEllipse(const Rect& rect, const Color& color, double lineWidth) {
    if (!(lineWidth > 0) || !finiteRect(rect)) return;
    Rect outer = rect.standardized().insetBy(-lineWidth / 2, -lineWidth / 2);
    Rect inner = rect.standardized().insetBy(lineWidth / 2, lineWidth / 2);
    if (inner.isEmpty()) return fillEllipse(outer, color);
    // Filling the ring between two ellipses gives the stroke's pixels for a
    // fraction of the stroker's cost (picture borders are drawn every frame).
    Path ring = Path::ellipse(outer);
    ring.addEllipse(inner);
    fillPath(ring, color, FillRule::EvenOdd);
}

void Canvas::fillPath(const Path& path, const Color& color, FillRule rule) {
    if (path.isEmpty()) return;
    cairo_new_path(impl_->cr);
    appendPath(impl_->cr, path);
    cairo_set_fill_rule(impl_->cr,
                        rule == FillRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
    impl_->setSource(color);
    impl_->finish(false);
    cairo_set_fill_rule(impl_->cr, CAIRO_FILL_RULE_WINDING);
}

void Canvas::strokePath(const Path& path, const Color& color, double lineWidth) {
    if (path.isEmpty() || !(lineWidth > 0)) return;
    cairo_new_path(impl_->cr);
    appendPath(impl_->cr, path);
    cairo_set_line_width(impl_->cr, lineWidth);
    impl_->setSource(color);
    impl_->finish(true);
}

void Canvas::drawLine(Point from, Point to, const Color& color, double lineWidth) {
    if (!(lineWidth > 0)) return;
    cairo_new_path(impl_->cr);
    cairo_move_to(impl_->cr, from.x, from.y);
    cairo_line_to(impl_->cr, to.x, to.y);
    cairo_set_line_width(impl_->cr, lineWidth);
    impl_->setSource(color);
    impl_->finish(true);
}

// ---- Pictures -----------------------------------------------------------------

void Canvas::drawImage(const Image& image, const Rect& rect, ContentMode mode) {
    cairo_surface_t* surface = detail::ImageAccess::surface(image);
    if (!surface || rect.isEmpty() || !finiteRect(rect)) return;
    Rect target = placeContent(image.size(), rect.standardized(), mode);
    if (target.isEmpty()) return;
    cairo_t* cr = impl_->cr;
    cairo_matrix_t ctm;
    cairo_get_matrix(cr, &ctm);
    const double s = impl_->scale;
    const double deviceWidth = std::round(target.width * s), deviceHeight = std::round(target.height * s);
    cairo_pattern_t* pattern = nullptr;
    if (ctm.xx == 1 && ctm.yy == 1 && ctm.xy == 0 && ctm.yx == 0 && deviceWidth >= 1 && deviceHeight >= 1 &&
        deviceWidth * deviceHeight <= kLargestResampled) {
        // The common case, an untransformed view: the picture resampled once
        // to its size in device pixels (kept with the image for the next
        // frame) and placed on a whole device pixel, which Cairo copies
        // without resampling. The shift is at most half a device pixel.
        const bool asIs = deviceWidth == image.pixelWidth() && deviceHeight == image.pixelHeight();
        cairo_surface_t* device =
            asIs ? cairo_surface_reference(surface)
                 : detail::ImageAccess::resampled(image, int(deviceWidth), int(deviceHeight));
        if (device) {
            target = {std::round((ctm.x0 + target.x) * s) / s - ctm.x0,
                      std::round((ctm.y0 + target.y) * s) / s - ctm.y0, deviceWidth / s, deviceHeight / s};
            pattern = cairo_pattern_create_for_surface(device);
            cairo_surface_destroy(device);
            cairo_matrix_t m;
            cairo_matrix_init_scale(&m, s, s);
            cairo_matrix_translate(&m, -target.x, -target.y);
            cairo_pattern_set_matrix(pattern, &m);
        }
    }
    if (!pattern) {
        pattern = cairo_pattern_create_for_surface(surface);
        // User space to picture pixels: move to the target's corner, then scale.
        cairo_matrix_t m;
        cairo_matrix_init_scale(&m, image.pixelWidth() / target.width, image.pixelHeight() / target.height);
        cairo_matrix_translate(&m, -target.x, -target.y);
        cairo_pattern_set_matrix(pattern, &m);
    }
    // Padding keeps a scaled picture's edges crisp instead of fading them
    // into transparency.
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    cairo_set_source(cr, pattern);
    cairo_pattern_destroy(pattern);
    cairo_rectangle(cr, target.x, target.y, target.width, target.height);
    if (impl_->state.alpha >= 1) {
        impl_->finish(false);
    } else {
        cairo_save(cr);
        cairo_clip(cr);
        cairo_paint_with_alpha(cr, impl_->state.alpha);
        cairo_restore(cr);
    }
}

void Canvas::drawImage(const Image& image, Point at) {
    drawImage(image, Rect{at, image.size()}, ContentMode::ScaleToFill);
}

void Canvas::drawShadow(const Rect& shape, double cornerRadius, const Shadow& shadow) {
    if (!shadow.isVisible() || shape.isEmpty() || !finiteRect(shape)) return;
    Rect r = shape.standardized();
    cairo_t* cr = impl_->cr;
    impl_->setSource(shadow.color.withAlpha(shadow.color.alpha * clamp01(shadow.opacity)));
    double sigma = std::max(0.0, shadow.radius) / 2;
    if (sigma <= 0) {
        appendRoundedRect(cr, r.offsetBy(shadow.offset.width, shadow.offset.height), cornerRadius);
        impl_->finish(false);
        return;
    }
    cairo_matrix_t m;
    cairo_get_matrix(cr, &m);
    Point origin{r.x + shadow.offset.width, r.y + shadow.offset.height};
    if (m.xx == 1 && m.yy == 1 && m.xy == 0 && m.yx == 0) {
        // The common case, an untransformed view: paint a cached shadow image
        // at device resolution and a whole pixel position, which Cairo copies
        // without resampling. A blurred edge does not show the sub-pixel shift.
        Color tone = shadow.color.clamped();
        double alpha = tone.alpha * clamp01(shadow.opacity);
        std::uint32_t premultiplied =
            std::uint32_t(Color::toByte(alpha)) << 24 | std::uint32_t(Color::toByte(tone.red * alpha)) << 16 |
            std::uint32_t(Color::toByte(tone.green * alpha)) << 8 | Color::toByte(tone.blue * alpha);
        detail::ShadowMask image =
            detail::deviceShadowImage(r.width, r.height, cornerRadius, sigma, impl_->scale, premultiplied);
        if (image.surface) {
            double s = impl_->scale;
            double deviceX = std::round((m.x0 + origin.x - image.padding) * s);
            double deviceY = std::round((m.y0 + origin.y - image.padding) * s);
            cairo_pattern_t* pattern = cairo_pattern_create_for_surface(image.surface);
            cairo_matrix_t pm;
            cairo_matrix_init_translate(&pm, -(deviceX - m.x0 * s), -(deviceY - m.y0 * s));
            cairo_matrix_scale(&pm, s, s);
            cairo_pattern_set_matrix(pattern, &pm);
            cairo_pattern_set_filter(pattern, CAIRO_FILTER_FAST);
            cairo_set_source(cr, pattern);
            cairo_pattern_destroy(pattern);
            if (impl_->state.alpha >= 1)
                cairo_paint(cr);
            else
                cairo_paint_with_alpha(cr, impl_->state.alpha);
            return;
        }
    }
    // Rotated or scaled: a low-resolution mask, scaled up while painting.
    double effectiveScale = impl_->scale * std::sqrt(std::abs(m.xx * m.yy - m.xy * m.yx));
    detail::ShadowMask mask = detail::shadowMask(r.width, r.height, cornerRadius, sigma, effectiveScale);
    if (!mask.surface) return;
    cairo_pattern_t* pattern = cairo_pattern_create_for_surface(mask.surface);
    cairo_matrix_t pm;
    cairo_matrix_init_scale(&pm, mask.maskScale, mask.maskScale);
    cairo_matrix_translate(&pm, -(origin.x - mask.padding), -(origin.y - mask.padding));
    cairo_pattern_set_matrix(pattern, &pm);
    cairo_pattern_set_filter(pattern, CAIRO_FILTER_BILINEAR);
    cairo_mask(cr, pattern);
    cairo_pattern_destroy(pattern);
}

// ---- Text -----------------------------------------------------------------------

namespace {

using detail::TextPlan;

TextPlan planText(const Rect& rect, const TextStyle& style) {
    TextPlan plan;
    detail::LayoutRequest& r = plan.request;
    bool truncating = style.lineBreak == LineBreakMode::TruncateHead ||
                      style.lineBreak == LineBreakMode::TruncateTail ||
                      style.lineBreak == LineBreakMode::TruncateMiddle;
    PangoEllipsizeMode ellipsize = style.lineBreak == LineBreakMode::TruncateHead     ? PANGO_ELLIPSIZE_START
                                   : style.lineBreak == LineBreakMode::TruncateMiddle ? PANGO_ELLIPSIZE_MIDDLE
                                                                                      : PANGO_ELLIPSIZE_END;
    r.alignment = style.alignment == TextAlignment::Center  ? PANGO_ALIGN_CENTER
                  : style.alignment == TextAlignment::Right ? PANGO_ALIGN_RIGHT
                                                            : PANGO_ALIGN_LEFT;
    r.wrap = style.lineBreak == LineBreakMode::CharWrap ? PANGO_WRAP_CHAR : PANGO_WRAP_WORD_CHAR;
    double width = std::max(0.0, rect.width);
    if (style.numberOfLines == 1 && !truncating) {
        plan.manualAlignment = true; // one line, cut at the rectangle
        r.alignment = PANGO_ALIGN_LEFT;
        return plan;
    }
    r.width = width;
    if (truncating) {
        r.ellipsize = ellipsize;
        if (style.numberOfLines > 0)
            r.maxLines = style.numberOfLines;
        else
            r.height = std::max(0.0, rect.height);
    } else {
        plan.lineLimit = std::max(0, style.numberOfLines);
    }
    return plan;
}

} // namespace

double Canvas::Impl::showText(TextPlan& plan, const Rect& rect, const TextStyle& style, bool runColours) {
    detail::LayoutRef layout = detail::TextEngine::current().layout(plan.request);
    double height = layout.size.height;
    if (plan.lineLimit > 0 && pango_layout_get_line_count(layout.layout) > plan.lineLimit) {
        // Wrapping without an ellipsis: show whole lines up to the limit.
        PangoLayoutIter* iter = pango_layout_get_iter(layout.layout);
        for (int i = 1; i < plan.lineLimit; ++i)
            pango_layout_iter_next_line(iter);
        int y0, y1;
        pango_layout_iter_get_line_yrange(iter, &y0, &y1);
        pango_layout_iter_free(iter);
        height = y1 / double(PANGO_SCALE);
    }
    double x = rect.x, y = rect.y;
    if (plan.manualAlignment) {
        double spare = rect.width - layout.size.width;
        if (style.alignment == TextAlignment::Center)
            x += spare / 2;
        else if (style.alignment == TextAlignment::Right)
            x += spare;
    }
    double shown = std::min(height, std::max(0.0, rect.height));
    if (style.verticalAlignment == VerticalAlignment::Center)
        y += (rect.height - shown) / 2;
    else if (style.verticalAlignment == VerticalAlignment::Bottom)
        y += rect.height - shown;

    cairo_save(cr);
    bool overflows =
        layout.size.width > rect.width + 0.01 || height > rect.height + 0.01 || height < layout.size.height;
    if (overflows) {
        cairo_rectangle(cr, rect.x, rect.y, rect.width, std::min(rect.height, y - rect.y + height));
        cairo_clip(cr);
    }
    // Run colours replace the source, so a global alpha below 1 goes through a group.
    bool grouped = runColours && state.alpha < 1;
    if (grouped) cairo_push_group(cr);
    setSource(style.color);
    cairo_move_to(cr, x, y);
    pango_cairo_show_layout(cr, layout.layout);
    // Showing a layout leaves a current point behind; a later path would start
    // with a stray line from it.
    cairo_new_path(cr);
    if (grouped) {
        cairo_pop_group_to_source(cr);
        cairo_paint_with_alpha(cr, state.alpha);
    }
    cairo_restore(cr);
    return shown;
}

double Canvas::drawText(std::string_view text, const Rect& rect, const TextStyle& style) {
    if (text.empty() || !finiteRect(rect) || !(rect.width > 0)) return 0;
    TextPlan plan = planText(rect, style);
    plan.request.text = text;
    plan.request.font = &style.font;
    return impl_->showText(plan, rect, style, false);
}

double Canvas::drawText(const AttributedText& text, const Rect& rect, const TextStyle& style) {
    if (text.isEmpty() || !finiteRect(rect) || !(rect.width > 0)) return 0;
    TextPlan plan = planText(rect, style);
    plan.request.attributed = &text;
    return impl_->showText(plan, rect, style, true);
}

} // namespace morvane::gfx
