#pragma once
// ZBTextview: the text editor panel that slides up inside a data input bar: a
// heading, a ZBInput holding the text, and Save, Cancel and DELETE; each ends
// the editing and reports once. Its layout is measured in font units.
//
//   auto panel = ZBTextview::initWithData("Guest note", "Note", "");
//   panel->addData(note);
//   panel->watchAction(0, [](const std::string& text) { ... }, [](bool) { ... }, [](bool) { ... });
//
// Threads: main thread only.

#include <morvane/forms/ZBInput.h>
#include <morvane/forms/detail/EditorPanel.h>

namespace morvane {

class ZBTextview : public detail::EditorPanel {
  public:
    // heading, the input field's name, and a third text that is not used.
    ZBTextview(std::string_view heading, std::string_view field, std::string_view unused = {});
    static std::shared_ptr<ZBTextview> initWithData(std::string_view heading, std::string_view field,
                                                    std::string_view unused = {});

    std::shared_ptr<ZBInput> inputTxt() const { return std::static_pointer_cast<ZBInput>(field_); }
    const std::shared_ptr<ui::Button>& saveBtn() const { return saveButton_; }

  protected:
    void layoutSubviews() override;
};

} // namespace morvane
