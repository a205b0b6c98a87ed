#pragma once
// UIProfile: the card of one person or business. A large picture on top, the
// name under it, a short white line, and a column of labelled values (phone,
// text, web site...) that can grow past the screen and scroll. It is an
// editable canvas: in edit mode the user retypes or deletes the name or a
// value, or replaces the picture with the camera, and the card reports each
// change with its Node.
//
//   auto card = std::make_shared<UIProfile>(gfx::Rect{0, 0, 390, 844});
//   card->watchEdit([](const std::string& text, const NodePtr& node) {
//       // node: the card's entries plus "field", the value's field name
//   });
//   card->watchTranslate([](const std::string& text, TranslateCompletion done) { ... });
//   card->addName("Hotel-Desk/Anna");          // shows "Anna"
//   card->addVal(Value("+351 912 345 678"), "phone");
//   card->refreshTranslate();                   // values with "<en>", one after another
//   card->editEnable(true);
//
// In edit mode the picture leaves its touches to the card, so a touch on it
// chooses it for the camera rather than switching its fit and fill.
//
// `clear` empties the values but keeps their labels for the next fill; the
// name, the picture and the card's Node survive it. A value that is neither
// a number nor a text shows as "123-456-7890".
//
// Threads: main thread only. Translation completions may come on any thread;
// the card moves their work to the main queue, and drops it when it is gone.
// Every callback may call any operation of the card, including releasing it.

#include <morvane/components/Translation.h>
#include <morvane/forms/UMEdit.h>
#include <morvane/gfx/Color.h>
#include <morvane/gfx/Image.h>
#include <morvane/media/ZBImage.h>
#include <morvane/model/Node.h>
#include <morvane/model/Value.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/controls/RefreshControl.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

class UIProfile : public UMEdit {
  public:
    // The text reported and the card's Node (for value edits a copy with "field").
    using TextCB = std::function<void(const std::string& text, const NodePtr& node)>;
    using LogoCB = std::function<void(const gfx::Image& picture, const NodePtr& node)>;
    using CloseCB = std::function<void(const std::string& text)>;
    using PhotoCompletion = std::function<void(const gfx::Image& picture)>;
    using TakePhotoCB = std::function<void(const std::string& text, PhotoCompletion completion)>;
    // Shown for a value that is neither a number nor a text.
    static constexpr std::string_view kPlaceholder = "123-456-7890";

    explicit UIProfile(const gfx::Rect& frame = {});
    ~UIProfile() override;

    const std::shared_ptr<ZBImage>& imageZB() const { return imageZB_; }
    const std::shared_ptr<ui::Button>& backBtn() const { return backBtn_; }
    const std::shared_ptr<ui::Button>& takePhotoBtn() const { return takePhotoBtn_; }
    const std::shared_ptr<ui::Label>& nameLbl() const { return nameLbl_; }
    const std::shared_ptr<ui::Label>& lineLbl() const { return lineLbl_; }
    const NodePtr& myData() const { return myData_; }
    const std::vector<std::shared_ptr<ui::Label>>& myLbl() const { return myLbl_; }
    // One Node per shown value: "field" and "data" (the value text as given).
    const std::vector<NodePtr>& myLblData() const { return myLblData_; }

    // ---- Filling ------------------------------------------------------------
    void addName(std::string_view text);
    // The part after the last "-", then after the last "/".
    static std::string processName(std::string_view text);
    void addKeyCode(std::string_view key);
    const std::string& keyCode() const { return myKey_; }
    void addVal(const Value& value, std::string_view field);
    void clear();
    void addImage(const gfx::Image& picture);
    // A resource name or an address with its date stamp; the colour is not used.
    void addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd,
                  const gfx::Color& imageColor = {});
    // Shows the picture and reports it through watchImage.
    void justTakenImage(const gfx::Image& picture);
    void animate();
    // The white line grows from its centre to full width over 1.5 s.
    void shrink();
    void refresh();
    void refresh(ui::RefreshControl& control);
    void refreshTranslate();
    void refreshTranslateEx(std::size_t index);
    void setBackgroundColor(const gfx::Color& color) override;
    // The canvas's edit mode, with the take-photo button shown while it is on.
    void editEnable(bool enable) override;

    // ---- Callbacks (each replaces an earlier one) ----------------------------
    void watchTranslate(TranslateCB callback) { translateCB_ = std::move(callback); }
    void watchRemove(TextCB callback) { removeCB_ = std::move(callback); }
    void watchName(TextCB callback) { nameCB_ = std::move(callback); }
    void watchEdit(TextCB callback) { editCB_ = std::move(callback); }
    void watchEdit2(TextCB callback) { editCB2_ = std::move(callback); }
    void watchImage(LogoCB callback) { logoCB_ = std::move(callback); }
    void watchClose(CloseCB callback) { closeCB_ = std::move(callback); }
    void watchActivateCamera(TakePhotoCB callback) { takePhotoCB_ = std::move(callback); }

    // The buttons' actions.
    void backAction();
    void takePhotoAction();

    // ---- Measuring -----------------------------------------------------------
    // 1.8 times the height of "Sample Text" in the system font.
    static double getTextHeight();
    // The wrapped height of the text at that width, raised to a whole point.
    static double heightWithConstrainedWidth(double width, const gfx::Font& font, std::string_view text);
    // The height of a value label for the text: 1.2 x its height at 0.8 x the card's width.
    double heightLbl(std::string_view text) const;
    static double bottomOf(const ui::View& view, double offset);
    static void addBorder(ui::View& view, int width);
    // The index of the view among the shown values' labels; -1 when absent.
    int matchLbl(const ui::View& view) const;
    // The current time as "HHmmsss" (seconds on three digits).
    static std::string getDate();
    // getDate, "-", and the last piece of the key code.
    std::string myPrefix() const;

    // ---- Corner colour -------------------------------------------------------
    // The pixels as a bitmap context holds them: 4 bytes a pixel, alpha
    // premultiplied and first, in little-endian words (bytes B, G, R, A).
    struct Bitmap {
        std::vector<std::uint8_t> bytes;
        int width = 0;
        int height = 0;
    };
    static std::optional<Bitmap> createARGBBitmapContextFromImage2(const gfx::Image& image);
    // The colour of the four bytes at the point, in memory order, each / 255.
    static gfx::Color getColorAtPoint(gfx::Point point, std::span<const std::uint8_t> data, int width);
    // The colour of the picture's top-left pixel; nothing without a picture.
    static std::optional<gfx::Color> getColorOfCornersForImage(const gfx::Image& image);
    static bool isClear(const gfx::Image& image);
    static bool isWhite(const gfx::Image& image);

    // The canvas's hooks: edits of the name, the values and the picture.
    void txtChanged(const std::string& text, ui::View& view) override;
    void imageChanged(const gfx::Image& image, ui::View& view) override;

  protected:
    void layoutSubviews() override;

  private:
    std::shared_ptr<ui::Label> makeValueLabel();
    // Calls the callback, when set, through a copy, holding the card.
    template <class Callback, class... Args> void report(const Callback& callback, Args&&... args);

    std::shared_ptr<ZBImage> imageZB_;
    std::shared_ptr<ui::Button> backBtn_;
    std::shared_ptr<ui::Button> takePhotoBtn_;
    std::shared_ptr<ui::Label> nameLbl_;
    std::shared_ptr<ui::Label> lineLbl_;
    NodePtr myData_;
    std::vector<std::shared_ptr<ui::Label>> myLbl_;
    std::vector<NodePtr> myLblData_;
    TranslateCB translateCB_;
    TextCB removeCB_, nameCB_, editCB_, editCB2_;
    LogoCB logoCB_;
    CloseCB closeCB_;
    TakePhotoCB takePhotoCB_;
    std::string myKey_;
};

} // namespace morvane
