#pragma once
// An action revealed by swiping a table row sideways, and the set of actions
// for one side of a row.
//
//   auto remove = ui::ContextualAction::make(ui::ContextualAction::Style::Normal, "Remove",
//       [](ui::ContextualAction&, ui::View&, std::function<void(bool)> done) { ...; done(true); });
//   remove->setBackgroundColor(gfx::Color::redColor());
//   return ui::SwipeActionsConfiguration::make({remove});
//
// The handler receives the action, the button that showed it, and a
// completion: call it (with whether the action was performed) when done, and
// the row slides shut.

#include <morvane/gfx/Color.h>
#include <morvane/ui/Forward.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace morvane::ui {

class ContextualAction {
  public:
    enum class Style { Normal, Destructive };
    using Completion = std::function<void(bool performed)>;
    using Handler = std::function<void(ContextualAction& action, View& sourceView, Completion completion)>;

    ContextualAction(Style style, std::string title, Handler handler)
        : style_(style), title_(std::move(title)), handler_(std::move(handler)),
          background_(style == Style::Destructive ? gfx::Color::redColor() : gfx::Color::grayColor()) {}
    static std::shared_ptr<ContextualAction> make(Style style, std::string title, Handler handler) {
        return std::make_shared<ContextualAction>(style, std::move(title), std::move(handler));
    }

    Style style() const { return style_; }
    const std::string& title() const { return title_; }
    void setTitle(std::string title) { title_ = std::move(title); }
    const gfx::Color& backgroundColor() const { return background_; }
    void setBackgroundColor(const gfx::Color& color) { background_ = color; }
    const Handler& handler() const { return handler_; }

  private:
    Style style_;
    std::string title_;
    Handler handler_;
    gfx::Color background_;
};

class SwipeActionsConfiguration {
  public:
    explicit SwipeActionsConfiguration(std::vector<std::shared_ptr<ContextualAction>> actions)
        : actions_(std::move(actions)) {}
    static std::shared_ptr<SwipeActionsConfiguration>
    make(std::vector<std::shared_ptr<ContextualAction>> actions) {
        return std::make_shared<SwipeActionsConfiguration>(std::move(actions));
    }

    // In order from the edge of the row inwards.
    const std::vector<std::shared_ptr<ContextualAction>>& actions() const { return actions_; }
    // A swipe across most of the row runs the first action (off by default:
    // rows open and wait for a press).
    bool performsFirstActionWithFullSwipe() const { return fullSwipe_; }
    void setPerformsFirstActionWithFullSwipe(bool on) { fullSwipe_ = on; }

  private:
    std::vector<std::shared_ptr<ContextualAction>> actions_;
    bool fullSwipe_ = false;
};

} // namespace morvane::ui
