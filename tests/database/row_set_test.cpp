// Row sets of the row-returning commands, and reading their values.

#include "database/database.h"
#include "database/database_errors.h"
#include "error_of.h"
#include "temp_database.h"

#include <gtest/gtest.h>

namespace dbn {
namespace {

using testing::ErrorOf;
using testing::TempDataRoot;

long ErrorNumberOf(const std::function<void()>& action) {
    return ErrorOf(action).Number();
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
    const ComponentError refused = ErrorOf([&] {
        db_.Execute("Get_Max_NodeNumber", {"1", "1", "8"});
    });
    EXPECT_EQ(refused.Number(), 3705);
    EXPECT_EQ(refused.Description(), "Operation is not allowed when the object is open.");
    // The refused execution left the open rows alone; other commands have
    // row sets of their own.
    EXPECT_EQ(limits.Field("Max_Number").ToInt16(), 0);
    EXPECT_EQ(db_.Execute("Get_Node_Names"), 18);

    limits.Close();
    limits.Close();  // closing twice is harmless
    EXPECT_FALSE(limits.IsOpen());
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

TEST_F(RowSets, NullFieldsUnknownColumnsAndMisusedCommands) {
    root_.Exec(
        "UPDATE Node_General_Pool SET NodeDescription = NULL WHERE PartID = 1 AND "
        "NodeTypeID = 0 AND NodeNumber = 3");
    ASSERT_EQ(db_.Execute("Get_Description", {"1", "1", "0", "3"}), 1);
    RowSet& description = db_.Recordset("Get_Description");
    const FieldValue value = description.Field("NodeDescription");
    EXPECT_TRUE(value.IsNull());
    EXPECT_EQ(value.ToText() + std::to_string(value.ToInt16()), "0");
    EXPECT_EQ(description.Field("NodeType").ToText(), "MSG");
    const ComponentError unknown = ErrorOf([&] { description.Field("NoSuchColumn"); });
    EXPECT_EQ(unknown.Number(), 3265);
    EXPECT_EQ(unknown.Description(),
              "Item cannot be found in the collection corresponding to the requested name or "
              "ordinal.");
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
    // Overflow is error 6, text that is no whole number error 13.
    const struct {
        S stored;
        int value;
        long error;
    } numbers[] = {{std::int64_t{-32768}, -32768, 0},
                   {std::int64_t{32767}, 32767, 0},
                   {2.5, 2, 0},
                   {3.5, 4, 0},
                   {-1.6, -2, 0},
                   {std::string(" 42 "), 42, 0},
                   {std::string("-7"), -7, 0},
                   {std::int64_t{32768}, 0, 6},
                   {1e9, 0, 6},
                   {std::string("70000"), 0, 6},
                   {std::string(""), 0, 13},
                   {std::string("MSG"), 0, 13},
                   {std::string("12a"), 0, 13},
                   {std::string("1.5"), 0, 13}};
    for (const auto& [stored, value, error] : numbers) {
        int converted = 0;
        EXPECT_EQ(ErrorNumberOf([&] { converted = FieldValue(stored).ToInt16(); }), error);
        EXPECT_EQ(converted, value) << FieldValue(stored).ToText();
    }
    EXPECT_EQ(FieldValue(S{std::int64_t{32768}}).ToInt32(), 32768);
    EXPECT_EQ(ErrorNumberOf([] { FieldValue(S{std::int64_t{1} << 40}).ToInt32(); }), 6);
    EXPECT_EQ(FieldValue().ToText() + "," + FieldValue(S{std::int64_t{-15}}).ToText() + "," +
                  FieldValue(S{0.25}).ToText() + "," + FieldValue(S{std::string("DBN")}).ToText(),
              ",-15,0.25,DBN");
}

}  // namespace
}  // namespace dbn
