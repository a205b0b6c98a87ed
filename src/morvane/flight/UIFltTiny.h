#pragma once
// UIFltTiny: one compact row of a flight schedule card: a caption on top and
// a value below it, styled by kind: a short time in bold, a long text in
// small italics, a time followed by a small condensed time-zone remark.
//
//   row->addData("Gate", "B12");                        // bold
//   row->addData(std::nullopt, "Seattle Tacoma International Airport"); // italics, caption kept
//   row->addData("Scheduled", "10:40", "UTC+1");        // bold time, small remark
//
// A value that is nothing (or not a text) empties the value and keeps the
// caption. Threads: main thread only (the card queues its work there).

#include <morvane/gfx/AttributedText.h>
#include <morvane/model/Value.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/core/View.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class UIFltTiny : public ui::View {
  public:
    // The face of the time-zone remark: a condensed bold face of its own
    // (the system family has none), never the regular face in its place.
    static constexpr const char* kRemarkFont = "HelveticaNeue-CondensedBold";
    // Shorter values are times, longer ones texts.
    static constexpr std::size_t kLongText = 16;
    static constexpr std::size_t kLongRemark = 40;

    explicit UIFltTiny(const gfx::Rect& frame = {});
    static std::shared_ptr<UIFltTiny> initWithTitle(std::string_view caption);

    const std::shared_ptr<ui::Button>& title() const { return title_; }
    const std::shared_ptr<ui::Button>& login() const { return login_; }

    void addData(const std::optional<std::string>& caption, const Value& value);
    void addDataBreak(const std::optional<std::string>& caption, const Value& value);
    void addData(const std::optional<std::string>& caption, const Value& value, const Value& remark);

    static gfx::AttributedText timeTxt(std::string_view text);
    static gfx::AttributedText timeTxt(std::string_view value, std::string_view remark);
    static gfx::AttributedText longTxt(std::string_view text, double factor);
    // The text on two lines, broken at a blank near its middle.
    static std::string evenText(std::string_view text);
    // The moment (seconds since 1970) of a text like "24 November 2026";
    // nothing when it is not one.
    static std::optional<double> isDate(std::string_view text);

    static void addBorder(ui::View& view, double width);

  protected:
    void layoutSubviews() override;

  private:
    // Empties the value and sets the caption when one is given; false when
    // the value is no text.
    bool begin(const std::optional<std::string>& caption, const Value& value);

    std::shared_ptr<ui::Button> title_;
    std::shared_ptr<ui::Button> login_;
};

} // namespace morvane
