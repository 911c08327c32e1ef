#include "controls_test_support.h"
#include "form/controls/simple_controls.h"

namespace dbn::form {
namespace {

using dbn::testing::ChangeLog;
using dbn::testing::EventCount;
using dbn::testing::RaisesError;

// A field and a button inside a frame inside a frame.
class FocusTest : public ::testing::Test {
protected:
    void SetUp() override {
        field.AttachFocusScope(&scope);
        button.AttachFocusScope(&scope);
        field.GotFocus = fieldFocus.Handler();
    }
    FocusScope scope;
    Frame outer{"Frame1", nullptr, Rect{}, 86, "", false};
    Frame inner{"fraActions", &outer, Rect{}, 21, "Actions", true};
    TextField field{"txtDescription", &inner, Rect{}, 7, "", 30};
    Button button{"cmdOK", &inner, Rect{}, 82, "OK"};
    EventCount fieldFocus;
};

TEST_F(FocusTest, GotFocusOnlyWhenTheFocusMoves) {
    ChangeLog log(field);
    field.SetFocus();
    field.SetFocus();
    EXPECT_EQ(fieldFocus.count, 1);
    button.SetFocus();
    EXPECT_FALSE(field.HasFocus());
    EXPECT_EQ(scope.Focused(), &button);
    field.SetFocus();
    EXPECT_EQ(fieldFocus.count, 2);
    EXPECT_EQ(log.aspects.size(), 3U);

    // Without a scope every call raises GotFocus.
    Button loose{"cmdLoose", nullptr, Rect{}, 0, "x"};
    EventCount looseFocus;
    loose.GotFocus = looseFocus.Handler();
    loose.SetFocus();
    loose.SetFocus();
    EXPECT_EQ(looseFocus.count, 2);
}

TEST_F(FocusTest, ControlsThatCannotTakeInputRefuseTheFocus) {
    const auto refused = [&] {
        return RaisesError([&] { field.SetFocus(); }, 5, "Invalid procedure call or argument");
    };
    field.SetVisible(false);
    EXPECT_TRUE(refused());
    field.SetVisible(true);
    field.SetEnabled(false);
    EXPECT_TRUE(refused());
    field.SetEnabled(true);
    outer.SetEnabled(false);
    EXPECT_TRUE(refused());
    outer.SetEnabled(true);
    inner.SetVisible(false);
    EXPECT_TRUE(refused());
    EXPECT_EQ(scope.Focused(), nullptr);
    EXPECT_EQ(fieldFocus.count, 0);
}

TEST_F(FocusTest, ObserversCanBeRemoved) {
    int seen = 0;
    const int handle = button.Observe([&](Control&, ChangeAspect) { ++seen; });
    button.SetCaption("Close");
    button.SetCaption("Close");
    button.Unobserve(handle);
    button.SetCaption("OK");
    EXPECT_EQ(seen, 1);
}

}  // namespace
}  // namespace dbn::form
