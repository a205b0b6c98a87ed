#pragma once
// An entry of a toolbar: a titled button, a system item (Done, Cancel) or
// space (flexible space shares what is left of the bar; fixed space has its
// width). Items are not views; the toolbar shows each button item as a button.

#include <functional>
#include <memory>
#include <string>

namespace morvane::ui {

class BarButtonItem {
  public:
    enum class SystemItem { Done, Cancel, FlexibleSpace, FixedSpace, Custom };
    using Action = std::function<void(BarButtonItem& item)>;

    static std::shared_ptr<BarButtonItem> systemItem(SystemItem item, Action action = {});
    static std::shared_ptr<BarButtonItem> withTitle(std::string title, Action action = {});
    static std::shared_ptr<BarButtonItem> flexibleSpace();
    static std::shared_ptr<BarButtonItem> fixedSpace(double width);

    SystemItem kind() const { return kind_; }
    bool isSpace() const { return kind_ == SystemItem::FlexibleSpace || kind_ == SystemItem::FixedSpace; }
    // The title shown: the system item's own ("Done", "Cancel") or the given one.
    const std::string& title() const { return title_; }
    // Done shows in bold.
    bool isProminent() const { return kind_ == SystemItem::Done; }
    double width() const { return width_; }
    void setWidth(double width) { width_ = width; }

    void setAction(Action action) { action_ = std::move(action); }
    bool hasAction() const { return static_cast<bool>(action_); }
    // Runs the action, as a tap on the item does.
    void trigger();

    BarButtonItem(SystemItem kind, std::string title, Action action);

  private:
    SystemItem kind_;
    std::string title_;
    Action action_;
    double width_ = 0;
};

} // namespace morvane::ui
