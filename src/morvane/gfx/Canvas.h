#pragma once
// Drawing onto pixels, in points: fills and strokes of rectangles, rounded
// rectangles and paths, clipping, transforms, a global alpha, blend modes,
// pictures placed by content mode, soft shadows and text. A Canvas draws onto
// an ImageContext's pixels or onto pixels a host owns, at a device scale
// (1, 2 or 3), so one layout in points gives crisp pixels at every scale.
//
// The state (transform, clip, alpha, blend mode) is saved and restored
// explicitly and cheaply; a renderer saves before each view and restores after.
// A Canvas belongs to one thread (the main thread when it draws text).

#include <morvane/gfx/AttributedText.h>
#include <morvane/gfx/Color.h>
#include <morvane/gfx/ContentMode.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/gfx/Image.h>
#include <morvane/gfx/Path.h>
#include <morvane/gfx/Shadow.h>
#include <morvane/gfx/TextStyle.h>
#include <morvane/gfx/Transform.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace morvane::gfx {

enum class BlendMode {
    Normal,
    Multiply,
    Screen,
    Overlay,
    Darken,
    Lighten,
    Clear,
    Copy,
    SourceIn,
    SourceOut,
    SourceAtop, // paint only where the destination is opaque, keeping its alpha (tinting)
    DestinationOver,
    DestinationIn,
    DestinationOut,
    DestinationAtop,
    Xor,
    PlusLighter,
};

enum class FillRule { Winding, EvenOdd };

class Canvas {
  public:
    // A canvas over pixels the caller owns and keeps alive: premultiplied
    // 32-bit ARGB in native byte order (what SDL calls ARGB8888), `stride`
    // bytes per row. The size in points is the pixel size over the scale.
    static std::unique_ptr<Canvas> overPixels(std::uint8_t* data, int pixelWidth, int pixelHeight, int stride,
                                              double scale);

    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    double scale() const;
    Size size() const; // in points

    // ---- State --------------------------------------------------------------
    void save();
    void restore(); // an unmatched restore is ignored

    // Restores on destruction: `auto saved = canvas.saved();`.
    class [[nodiscard]] SavedState {
      public:
        explicit SavedState(Canvas& canvas) : canvas_(&canvas) { canvas.save(); }
        ~SavedState() {
            if (canvas_) canvas_->restore();
        }
        SavedState(const SavedState&) = delete;
        SavedState& operator=(const SavedState&) = delete;

      private:
        Canvas* canvas_;
    };
    SavedState saved() { return SavedState(*this); }

    void translate(double dx, double dy);
    void scaleBy(double sx, double sy);
    void rotate(double angle);
    void concat(const Transform& transform);
    // The current transform from user space to the canvas's points.
    Transform transform() const;

    // Multiplies the current alpha (so nested views compose); 1 is opaque.
    void multiplyAlpha(double alpha);
    double alpha() const;
    void setBlendMode(BlendMode mode);
    BlendMode blendMode() const;

    // Group drawing: everything between begin and end is composed first and
    // then painted with the alpha, so overlapping parts do not show through.
    void beginTransparencyLayer();
    void endTransparencyLayer(double alpha);

    // ---- Clipping -----------------------------------------------------------
    void clipToRect(const Rect& rect);
    void clipToRoundedRect(const Rect& rect, double cornerRadius);
    void clipToPath(const Path& path, FillRule rule = FillRule::Winding);
    // The clip's bounding box in user space.
    Rect clipBounds() const;
    // False when nothing of the rectangle can show (quick rejection).
    bool isVisible(const Rect& rect) const;

    // ---- Fills and strokes --------------------------------------------------
    // Replaces everything inside the clip with the colour (clear for transparent).
    void clear(const Color& color = Color::clearColor());
    // Moves pixels within the area (in the canvas's points, whole device
    // pixels, regardless of the transform and clip): afterwards the pixel at
    // p shows what the one at p + by showed, for every p of the area whose
    // source lies in it too; the rest of the area keeps its pixels. False,
    // with nothing moved, when the pixels cannot be reached directly or the
    // area or offset falls between pixels.
    bool movePixels(const Rect& area, Point by);
    void fillRect(const Rect& rect, const Color& color);
    void strokeRect(const Rect& rect, const Color& color, double lineWidth);
    void fillRoundedRect(const Rect& rect, double cornerRadius, const Color& color);
    void strokeRoundedRect(const Rect& rect, double cornerRadius, const Color& color, double lineWidth);
    void fillEllipse(const Rect& rect, const Color& color);
    void strokeEllipse(const Rect& rect, const Color& color, double lineWidth);
    void fillPath(const Path& path, const Color& color, FillRule rule = FillRule::Winding);
    void strokePath(const Path& path, const Color& color, double lineWidth);
    void drawLine(Point from, Point to, const Color& color, double lineWidth);

    // ---- Pictures -----------------------------------------------------------
    // Draws the picture placed in the rectangle by the content mode (aspect
    // fill overflows the rectangle; clip first to keep it inside).
    void drawImage(const Image& image, const Rect& rect, ContentMode mode = ContentMode::ScaleToFill);
    // At its own size in points, top-left at the point.
    void drawImage(const Image& image, Point at);

    // A soft shadow of a rounded rectangle (radius 0 for a plain one, half the
    // side for a circle). Blurred masks are cached, so a shadow that does not
    // change costs one masked fill per frame.
    void drawShadow(const Rect& shape, double cornerRadius, const Shadow& shadow);

    // ---- Text ---------------------------------------------------------------
    // Draws the text inside the rectangle with the style's font, colour,
    // alignment, line limit and truncation. Returns the height used.
    double drawText(std::string_view text, const Rect& rect, const TextStyle& style);
    // Runs carry their own fonts and colours; the style gives the layout.
    double drawText(const AttributedText& text, const Rect& rect, const TextStyle& style);

  private:
    friend class ImageContext;
    struct Impl;
    explicit Canvas(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

} // namespace morvane::gfx
