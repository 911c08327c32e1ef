#include "controls_test_support.h"
#include "form/controls/list_view.h"

namespace dbn::form {
namespace {

using dbn::testing::ChangeLog;
using dbn::testing::RaisesError;
using Aspects = std::vector<ChangeAspect>;

class ListViewTest : public ::testing::Test {
protected:
    ListView list{"LVActions", nullptr, Rect{}, 22};
};

TEST_F(ListViewTest, ColumnsAndKeyedRows) {
    list.AddColumn({"#", 300, ColumnAlignment::Right});
    EXPECT_EQ(list.Column(0).alignment, ColumnAlignment::Right);
    EXPECT_TRUE(RaisesError([&] { (void)list.Column(1); }, 35600, "Index out of bounds"));

    list.AddItem("1a", "1");
    ListItem& second = list.AddItem("2a", "2");
    EXPECT_TRUE(
        RaisesError([&] { list.AddItem("1a", "x"); }, 35602, "Key is not unique in collection"));
    EXPECT_EQ(list.ItemCount(), 2);
    EXPECT_EQ(list.FindItem("2a"), &second);
    EXPECT_TRUE(RaisesError([&] { (void)list.ItemAt(2); }, 35600, "Index out of bounds"));
    list.RemoveItem(0);
    EXPECT_EQ(second.Index(), 0);
    list.AddItem("1a", "1");  // the removed row's key is free again
}

TEST_F(ListViewTest, SubItemsNotifyTheList) {
    ListItem& row = list.AddItem("1a", "1");
    ChangeLog log(list);
    EXPECT_EQ(row.SubItem(6), "");
    row.SetSubItem(4, "Abort");
    row.SetSubItem(4, "Abort");
    row.SetSubItem(1, "");
    EXPECT_EQ(row.SubItem(4), "Abort");
    EXPECT_TRUE(RaisesError([&] { row.SetSubItem(7, "x"); }, 380, "Invalid property value"));
    EXPECT_EQ(log.aspects, (Aspects{ChangeAspect::Rows}));
}

TEST_F(ListViewTest, SelectionFollowsAddRemoveAndClear) {
    ListItem& first = list.AddItem("1a", "1");
    ListItem& second = list.AddItem("2a", "2");
    EXPECT_EQ(list.SelectedItem(), &first);
    EXPECT_TRUE(first.Selected());

    list.SetSelectedItem(&second);
    EXPECT_FALSE(first.Selected());
    EXPECT_TRUE(second.Selected());
    list.RemoveItem(0);
    EXPECT_EQ(list.SelectedItem(), &second);
    list.RemoveItem(0);
    EXPECT_EQ(list.SelectedItem(), nullptr);

    ListItem& third = list.AddItem("3a", "3");
    EXPECT_EQ(list.SelectedItem(), &third);
    EXPECT_TRUE(third.Selected());
    list.ClearItems();
    EXPECT_EQ(list.SelectedItem(), nullptr);
}

TEST_F(ListViewTest, RowPositionsVisibilityAndTabStop) {
    list.AddItem("1a", "1");
    list.AddItem("2a", "2");
    ListItem& third = list.AddItem("3a", "3");
    EXPECT_EQ(list.RowPositionOf(third).top, 285 + 2 * 255);
    list.SetRowGeometry([](const ListView&, int position) { return RowPosition{30, position}; });
    EXPECT_EQ(list.RowPositionOf(third).top, 2);

    ChangeLog log(list);
    list.EnsureVisible(third);
    EXPECT_EQ(list.EnsuredVisible(), 2);
    list.SetTabStop(true);
    list.SetTabStop(false);
    EXPECT_EQ(log.aspects, (Aspects{ChangeAspect::Rows, ChangeAspect::State}));
}

}  // namespace
}  // namespace dbn::form
