#pragma once
// The fixture most component suites want: a fresh application (AppSandbox,
// with its settings store in the sandbox too) and a headless phone to put
// the component on, with the helpers every such suite wrote for itself.
//
//   class CardTest : public HostFixture {};
//   TEST_F(CardTest, ...) { auto card = place(std::make_shared<Card>(), {0, 0, 390, 300});
//   tapOn(*card->button()); }

#include "AppSandbox.h"

#include <morvane/gfx/Geometry.h>
#include <morvane/ui/core/View.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

#include <memory>

namespace morvane::test {

class HostFixture : public ::testing::Test, protected AppSandbox {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Puts the view on the phone at the frame and lets it lay out.
    template <class V> std::shared_ptr<V> place(std::shared_ptr<V> view, const gfx::Rect& frame) {
        view->setFrame(frame);
        host->root()->addSubview(view);
        host->runUntilIdle();
        return view;
    }
    // A tap in the middle of the view.
    void tapOn(const ui::View& view);

    std::unique_ptr<ui::HeadlessHost> host;
};

} // namespace morvane::test
