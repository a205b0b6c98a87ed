#pragma once
// NTextview: the text editor panel that slides up inside a data input bar: a
// heading, a CTextview holding the text, and Save, Cancel and DELETE; each ends
// the editing and reports once. Its layout is proportional to its size.
//
//   auto panel = NTextview::initWithData("Guest note", "Note", "");
//   panel->addData(note);
//   panel->watchAction(0, [](const std::string& text) { ... }, [](bool) { ... }, [](bool) { ... });
//
// Threads: main thread only.

#include <morvane/forms/CTextview.h>
#include <morvane/forms/detail/EditorPanel.h>

namespace morvane {

class NTextview : public detail::EditorPanel {
  public:
    // heading, the input field's name, and a third text that is not used.
    NTextview(std::string_view heading, std::string_view field, std::string_view unused = {});
    static std::shared_ptr<NTextview> initWithData(std::string_view heading, std::string_view field,
                                                   std::string_view unused = {});

    std::shared_ptr<CTextview> usr() const { return std::static_pointer_cast<CTextview>(field_); }
    const std::shared_ptr<ui::Button>& login() const { return saveButton_; }

  protected:
    void layoutSubviews() override;
};

} // namespace morvane
