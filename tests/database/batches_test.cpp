// Batches of catalogue commands: answers in order, a failure stops the batch
// where it happens, and answers read ahead stand in for the same reads until
// a write.

#include "database/database.h"
#include "database/database_errors.h"
#include "error_of.h"
#include "temp_database.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace dbn {
namespace {

using testing::TempDataRoot;

class Batches : public ::testing::Test {
protected:
    static BatchStep Label(int number, const std::string& text) {
        return {"Update_Node_General_Pool",
                {text, "2001-01-01 00:00:00", "1", "1", "0", std::to_string(number)}};
    }
    static BatchStep Describe(int number) {
        return {"Get_Description", {"1", "1", "0", std::to_string(number)}};
    }
    std::string LabelOf(int number) const {
        return root_.QueryText(
            "SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 1 AND NodeTypeID = 0 "
            "AND NodeNumber = " +
            std::to_string(number));
    }

    TempDataRoot root_{TempDataRoot::Content::Demo};
    DataBase db_;
};

// Each step answers in order: rows for a read (seeing the writes before it
// in the batch), rows changed for a write; the same command may come twice.
TEST_F(Batches, AnswersComeInOrderAndReadsSeeEarlierWrites) {
    std::vector<BatchAnswer> answers =
        db_.ExecuteBatch({BatchStep::BeginTrans(), Describe(1), Label(1, "first"), Describe(1),
                          Label(99, "none"), Describe(2), BatchStep::CommitTrans()});
    ASSERT_EQ(answers.size(), 7u);
    const std::string before = answers[1].rows.Field("NodeDescription").ToText();
    EXPECT_NE(before, "first");
    EXPECT_EQ(answers[2].count, 1);
    EXPECT_EQ(answers[3].count, 1);
    EXPECT_EQ(answers[3].rows.Field("NodeDescription").ToText(), "first");
    EXPECT_EQ(answers[4].count, 0);
    EXPECT_EQ(answers[5].rows.Name(), "rsGet_Description");
    EXPECT_FALSE(db_.InTransaction());
    EXPECT_EQ(LabelOf(1), "first");
    EXPECT_EQ(db_.ExecutedCount(), 5);
    EXPECT_TRUE(db_.ExecuteBatch({}).empty());
}

// A failing step raises its own error and nothing after it is applied;
// outside a transaction the steps before it are undone too, on either
// engine. The connection then serves the next batch. A wrong argument count,
// or a step the operation does not take, sends nothing at all.
TEST_F(Batches, AFailureIsThatStepsAndNothingAfterItIsApplied) {
    const std::string first = LabelOf(1);
    const std::string before = LabelOf(2);
    const ComponentError error = testing::ErrorOf([&] {
        db_.ExecuteBatch({Label(1, "maybe"),
                          {"Add_DBN_PromptsNode", {"1", "1", "1", "0", "1", "1", "MSG"}},
                          Label(2, "after")});
    });
    EXPECT_NE(error.Number(), 0);
    EXPECT_NE(error.Description().find("Add_DBN_PromptsNode"), std::string::npos)
        << error.Description();
    EXPECT_EQ(LabelOf(1), first);
    EXPECT_EQ(LabelOf(2), before);
    EXPECT_FALSE(db_.InTransaction());
    EXPECT_EQ(db_.ExecuteBatch({Describe(1)}).at(0).count, 1);

    const ComponentError count = testing::ErrorOf([&] {
        db_.ExecuteBatch({Label(3, "not sent"), {"Get_Description", {"1"}}});
    });
    EXPECT_EQ(count.Number(), kErrArgumentCount);
    EXPECT_NE(LabelOf(3), "not sent");
    const ComponentError read = testing::ErrorOf([&] { db_.QueueWrite(Describe(1)); });
    EXPECT_EQ(read.Number(), kErrNotAnActionCommand);
    EXPECT_EQ(read.Description(), "Only action commands can be queued.");
    const ComponentError write = testing::ErrorOf([&] { db_.ReadAhead({Label(3, "not sent")}); });
    EXPECT_EQ(write.Number(), kErrNotARowReturningCommand);
    EXPECT_EQ(write.Description(), "Only row-returning commands can be read ahead.");
    EXPECT_NE(LabelOf(3), "not sent");
}

// Reads ahead answer the same command with the same arguments until a
// write; other arguments still ask the database.
TEST_F(Batches, AnswersReadAheadServeTheSameReadsUntilAWrite) {
    const long executed = db_.ExecutedCount();
    ASSERT_EQ(db_.ReadAhead({Describe(1), Describe(2)}).size(), 2u);
    EXPECT_EQ(db_.ExecutedCount(), executed);
    root_.Exec(
        "UPDATE Node_General_Pool SET NodeDescription = 'meanwhile' WHERE PartID = 1 AND "
        "NodeTypeID = 0 AND NodeNumber IN (1, 3)");
    auto read = [&](int number) {
        db_.Execute("Get_Description", {"1", "1", "0", std::to_string(number)});
        RowSet& rows = db_.Recordset("Get_Description");
        std::string text = rows.Field("NodeDescription").ToText();
        rows.Close();
        return text;
    };
    EXPECT_NE(read(1), "meanwhile");  // as read ahead
    EXPECT_NE(read(1), "meanwhile");
    EXPECT_EQ(read(3), "meanwhile");  // not read ahead
    EXPECT_EQ(db_.ExecutedCount(), executed + 3);
    db_.Execute("Update_Node_General_Pool", {"x", "2001-01-01 00:00:00", "1", "1", "0", "5"});
    EXPECT_FALSE(db_.HasReadAhead());
    EXPECT_EQ(read(1), "meanwhile");

    db_.ReadAhead({Describe(1)});
    { ReadAheadScope scope(db_); }
    EXPECT_FALSE(db_.HasReadAhead());
}

}  // namespace
}  // namespace dbn
