// Row sets of the row-returning commands, and reading their values.

#include "core/component_error.h"
#include "database/database.h"
#include "database/database_errors.h"
#include "temp_database.h"

#include <gtest/gtest.h>

namespace dbn {
namespace {

using testing::TempDataRoot;

long ErrorNumberOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const ComponentError& error) {
        return error.Number();
    }
    return 0;
}

class RowSets : public ::testing::Test {
protected:
    TempDataRoot root_{TempDataRoot::Content::Demo};
    DataBase db_;
};

TEST_F(RowSets, OpenRowSetRefusesReExecutionUntilClosed) {
    EXPECT_EQ(db_.Execute("Get_Max_NodeNumber", {"1", "2", "8"}), 1);
    RowSet& limits = db_.Recordset("Get_Max_NodeNumber");
    EXPECT_EQ(limits.Name(), "rsGet_Max_NodeNumber");
    try {
        db_.Execute("Get_Max_NodeNumber", {"1", "1", "8"});
        ADD_FAILURE() << "executed over an open row set";
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), 3705);
        EXPECT_EQ(error.Description(), "Operation is not allowed when the object is open.");
    }
    // The refused execution left the open rows alone; other commands have
    // row sets of their own.
    EXPECT_EQ(limits.Field("Max_Number").ToInt16(), 0);
    EXPECT_EQ(db_.Execute("Get_Node_Names"), 18);

    limits.Close();
    EXPECT_FALSE(limits.IsOpen());
    limits.Close();  // closing twice is harmless
    EXPECT_EQ(db_.Execute("Get_Max_NodeNumber", {"1", "1", "8"}), 1);
    EXPECT_EQ(limits.Field("Max_Number").ToInt16(), 20);
}

TEST_F(RowSets, ReadsFrontToBackMovesToTheLastAndRefusesReadsPastTheEnd) {
    ASSERT_EQ(db_.Execute("Get_DBN_PromptsNode", {"1", "1", "1"}), 9);
    RowSet& prompts = db_.Recordset("Get_DBN_PromptsNode");
    std::vector<int> numbers;
    for (; !prompts.Eof(); prompts.MoveNext()) {
        numbers.push_back(prompts.Field("PromptNumber").ToInt16());
    }
    EXPECT_EQ(numbers, (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(ErrorNumberOf([&] { prompts.MoveNext(); }), kErrNoCurrentRow);
    EXPECT_EQ(ErrorNumberOf([&] { prompts.Field("PromptNumber"); }), kErrNoCurrentRow);
    prompts.MoveLast();
    EXPECT_EQ(prompts.Field("PromptNumber").ToInt16(), 9);
    EXPECT_EQ(prompts.Field("promptnodetype").ToText(), "MSG");  // names ignore case
    prompts.Close();
    EXPECT_EQ(ErrorNumberOf([&] { prompts.Eof(); }), kErrObjectClosed);
    EXPECT_EQ(ErrorNumberOf([&] { prompts.Field("PromptNumber"); }), kErrObjectClosed);

    EXPECT_EQ(db_.Execute("Get_Description", {"1", "2", "0", "12"}), 0);
    RowSet& none = db_.Recordset("Get_Description");
    EXPECT_TRUE(none.IsOpen() && none.Eof());
    EXPECT_EQ(ErrorNumberOf([&] { none.MoveLast(); }), kErrNoCurrentRow);
}

TEST_F(RowSets, NullFieldsUnknownColumnsAndUnknownCommands) {
    root_.Exec(
        "UPDATE Node_General_Pool SET NodeDescription = NULL WHERE PartID = 1 AND "
        "NodeTypeID = 0 AND NodeNumber = 3");
    ASSERT_EQ(db_.Execute("Get_Description", {"1", "1", "0", "3"}), 1);
    RowSet& description = db_.Recordset("Get_Description");
    const FieldValue value = description.Field("NodeDescription");
    EXPECT_TRUE(value.IsNull());
    EXPECT_EQ(value.ToText(), "");
    EXPECT_EQ(value.ToInt16(), 0);
    EXPECT_EQ(description.Field("NodeType").ToText(), "MSG");
    try {
        description.Field("NoSuchColumn");
        ADD_FAILURE() << "an unknown column was read";
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), 3265);
        EXPECT_EQ(error.Description(),
                  "Item cannot be found in the collection corresponding to the requested name or "
                  "ordinal.");
    }
    EXPECT_EQ(ErrorNumberOf([&] { db_.Recordset("Update_Node_General_Pool"); }), 3265);
    EXPECT_EQ(ErrorNumberOf([&] { db_.Execute("Get_Nothing"); }), kErrUnknownCommand);
    EXPECT_EQ(ErrorNumberOf([&] { db_.Execute("Get_Node_Names", {"1"}); }), kErrArgumentCount);
    EXPECT_EQ(ErrorNumberOf([&] {
                  db_.Execute("Get_Description", {"1", "1"});
              }),
              kErrArgumentCount);
}

TEST(FieldValues, ConvertToSmallIntegersAndText) {
    using S = FieldValue::Storage;
    // Reals round half to even; text may carry blanks around the number.
    const std::pair<S, int> numbers[] = {{std::int64_t{-32768}, -32768},
                                         {std::int64_t{32767}, 32767},
                                         {2.5, 2},
                                         {3.5, 4},
                                         {-1.6, -2},
                                         {std::string(" 42 "), 42},
                                         {std::string("-7"), -7}};
    for (const auto& [stored, expected] : numbers) {
        EXPECT_EQ(FieldValue(stored).ToInt16(), expected) << expected;
    }
    // Overflow is error 6, text that is no whole number error 13.
    const std::pair<S, long> errors[] = {{std::int64_t{32768}, 6},  {1e9, 6},
                                         {std::string("70000"), 6}, {std::string(""), 13},
                                         {std::string("MSG"), 13},  {std::string("12a"), 13},
                                         {std::string("1.5"), 13}};
    for (const auto& [stored, number] : errors) {
        EXPECT_EQ(ErrorNumberOf([&] { FieldValue(stored).ToInt16(); }), number);
    }
    EXPECT_EQ(FieldValue(S{std::int64_t{32768}}).ToInt32(), 32768);
    EXPECT_EQ(ErrorNumberOf([] { FieldValue(S{std::int64_t{1} << 40}).ToInt32(); }), 6);

    EXPECT_EQ(FieldValue().ToText() + "," + FieldValue(S{std::int64_t{-15}}).ToText() + "," +
                  FieldValue(S{0.25}).ToText() + "," + FieldValue(S{std::string("DBN")}).ToText(),
              ",-15,0.25,DBN");
}

}  // namespace
}  // namespace dbn
