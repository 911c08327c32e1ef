// The shared error type and the by-name component factory.

#include "core/component_error.h"
#include "core/component_factory.h"
#include "error_of.h"

#include <gtest/gtest.h>

namespace dbn {
namespace {

using dbn::testing::ErrorOf;

struct Validator : Component {
    int uses = 0;
};
struct Dialog : Component {};

TEST(ComponentErrors, RaisedErrorsCarryNumberTheComponentsSourceAndDescription) {
    const ComponentError raised = ErrorOf([] { RaiseError(6, "Overflow"); });
    EXPECT_EQ(raised.Number(), 6);
    EXPECT_EQ(raised.Source(), "CVL_DBN_Node");
    EXPECT_EQ(raised.Description(), "Overflow");
    EXPECT_STREQ(raised.what(), "Overflow");
}

class Factory : public ::testing::Test {
protected:
    void TearDown() override {
        UnregisterComponent("Test.Validator");
        UnregisterComponent("Test.Nothing");
    }
};

TEST_F(Factory, CreatesFreshObjectsWithTheLatestRegisteredMaker) {
    RegisterComponent("Test.Validator", [] { return std::make_unique<Validator>(); });
    auto first = CreateObjectAs<Validator>("Test.Validator");
    ASSERT_NE(first, nullptr);
    first->uses = 3;
    EXPECT_EQ(CreateObjectAs<Validator>("Test.Validator")->uses, 0);

    RegisterComponent("Test.Validator", [] {
        auto made = std::make_unique<Validator>();
        made->uses = 7;
        return made;
    });
    EXPECT_EQ(CreateObjectAs<Validator>("Test.Validator")->uses, 7);
}

TEST_F(Factory, UnknownEmptyOrUnregisteredMakersAndWrongTypesCannotCreate) {
    const ComponentError unknown = ErrorOf([] { CreateObject("Test.Unknown"); });
    EXPECT_EQ(unknown.Number(), 429);
    EXPECT_EQ(unknown.Description(), "Can't create object: Test.Unknown");
    RegisterComponent("Test.Nothing", [] { return std::unique_ptr<Component>(); });
    EXPECT_EQ(ErrorOf([] { CreateObject("Test.Nothing"); }).Number(), 429);

    RegisterComponent("Test.Validator", [] { return std::make_unique<Validator>(); });
    const ComponentError mismatch = ErrorOf([] { CreateObjectAs<Dialog>("Test.Validator"); });
    EXPECT_EQ(mismatch.Number(), 13);
    EXPECT_EQ(mismatch.Description(), "Type mismatch");
    UnregisterComponent("Test.Validator");
    EXPECT_EQ(ErrorOf([] { CreateObject("Test.Validator"); }).Number(), 429);
}

}  // namespace
}  // namespace dbn
