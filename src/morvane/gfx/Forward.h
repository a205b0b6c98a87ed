#pragma once
// Forward declarations of the drawing types, for headers that only pass them on.

namespace morvane::gfx {

struct Point;
struct Size;
struct Rect;
struct Insets;
class Transform;
struct Color;
class Image;
class ImageContext;
class Path;
class Canvas;
class Font;
class AttributedText;
struct TextStyle;
struct Shadow;

} // namespace morvane::gfx
