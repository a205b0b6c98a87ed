#include "HostFixture.h"

#include <morvane/sys/App.h>

namespace morvane::test {

void HostFixture::SetUp() {
    enterSandbox(::testing::UnitTest::GetInstance()->current_test_suite()->name());
    sys::App::setDataFolder(root / "Data");
    host = std::make_unique<ui::HeadlessHost>();
}

void HostFixture::TearDown() {
    host.reset();
    sys::App::setDataFolder({});
    leaveSandbox();
}

void HostFixture::tapOn(const ui::View& view) {
    host->tap(view.convertRectTo(view.bounds(), nullptr).center());
}

} // namespace morvane::test
