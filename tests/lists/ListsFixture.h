#pragma once
// Shared by the list tests: a headless phone with a UITbl filling it, a fresh
// application (see AppSandbox; the picture cache writes there), and small
// helpers to reach rows and cells on screen.

#include "AppSandbox.h"
#include "Rects.h"

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Geometry.h>
#include <morvane/lists/UITbl.h>
#include <morvane/lists/UITblCell.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Log.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace morvane::test {

// Configures through the kit's twelve-callback operation, so every test that
// configures a list goes through it.
void configure(UITbl& list, const ListConfig& config);
// The "key" texts of the rows in order ("-" for rows without one or that are no Node).
std::vector<std::string> keysOf(const List& rows);
// How many captured lines contain the text.
int linesWith(const sys::Log::Capture& log, std::string_view text);

class ListsFixture : public testing::Test, protected AppSandbox {
  protected:
    void SetUp() override;
    void TearDown() override;

    // keysOf the list's rows.
    std::vector<std::string> rowKeys() const { return keysOf(*list->myData()); }
    // The cell on screen for the row (fails the test when there is none).
    std::shared_ptr<UITblCell> cellAt(int row) const;
    // The row's centre in window coordinates.
    gfx::Point rowCentre(int row) const;
    // A tap in the middle of the view.
    void tapOn(const ui::View& view) const;
    std::unique_ptr<ui::HeadlessHost> host;
    std::shared_ptr<UITbl> list;
};

} // namespace morvane::test
