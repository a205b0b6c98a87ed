#pragma once
// Forward declarations of the view layer, for headers that only pass these types on.

#include <memory>
#include <vector>

namespace morvane::ui {

class View;
class Window;
class Layer;
class Touch;
class Control;
class Label;
class Button;
class ImageView;
class ActivityIndicator;
class SegmentedControl;
class Toolbar;
class BarButtonItem;
class GestureRecognizer;
class TapGestureRecognizer;
class Renderer;
class HeadlessHost;
class WindowHost;
enum class Key;

using ViewPtr = std::shared_ptr<View>;
using Touches = std::vector<Touch>;

} // namespace morvane::ui
