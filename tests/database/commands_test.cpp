// The command catalogue against the real schema, and text arguments meeting
// integer columns.

#include "database/command_catalogue.h"
#include "database/database.h"
#include "database/sql_translation.h"
#include "temp_database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <set>

namespace dbn {
namespace {

using testing::TempDataRoot;

TEST(Translation, NumbersParametersByFirstAppearance) {
    const TranslatedStatement statement = TranslateToSqlite(
        "SELECT `Password`, NodeType FROM `Node_MSG` WHERE A = `Given_A` AND (B = Given_B) AND "
        "C = ` GIVEN_a ` AND D = 'Given_D' AND E = Given_Ex AND F = XGiven_F");
    EXPECT_EQ(statement.sql,
              "SELECT \"Password\", NodeType FROM \"Node_MSG\" WHERE A = ?1 AND (B = ?2) AND "
              "C = ?1 AND D = 'Given_D' AND E = ?3 AND F = XGiven_F");
    EXPECT_EQ(statement.parameters, (std::vector<std::string>{"Given_A", "Given_B", "Given_Ex"}));
}

// The forty statements each translate to their declared number of
// parameters, prepare against the schema with exactly that many
// placeholders, and run through DataBase on an empty database (each in a
// transaction rolled back, so that the one insert leaves nothing behind).
TEST(Catalogue, EveryStatementPreparesAndRunsWithItsDeclaredParameterCount) {
    TempDataRoot root;
    sqlite3* raw = nullptr;
    ASSERT_EQ(sqlite3_open_v2(root.DatabasePath().c_str(), &raw, SQLITE_OPEN_READONLY, nullptr),
              SQLITE_OK);
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> check(raw, sqlite3_close);
    DataBase db;
    std::set<std::string_view> names;
    int rowReturning = 0;
    for (const CatalogueCommand& command : CommandCatalogue()) {
        SCOPED_TRACE(std::string(command.name));
        names.insert(command.name);
        rowReturning += command.kind == CommandKind::RowReturning;
        const TranslatedStatement translated = TranslateToSqlite(command.text);
        EXPECT_EQ(translated.parameters.size(), static_cast<std::size_t>(command.parameterCount));
        // The server's form numbers the same parameters the same way.
        const TranslatedStatement onServer = TranslateToPostgres(command.text);
        EXPECT_EQ(onServer.parameters, translated.parameters);
        EXPECT_EQ(onServer.sql.find('?'), std::string::npos) << onServer.sql;
        sqlite3_stmt* statement = nullptr;
        ASSERT_EQ(sqlite3_prepare_v2(check.get(), translated.sql.c_str(), -1, &statement, nullptr),
                  SQLITE_OK)
            << sqlite3_errmsg(check.get()) << "\n"
            << translated.sql;
        EXPECT_EQ(sqlite3_bind_parameter_count(statement), command.parameterCount);
        EXPECT_EQ(sqlite3_stmt_readonly(statement) != 0, command.kind == CommandKind::RowReturning);
        sqlite3_finalize(statement);

        const std::vector<std::string> args(static_cast<std::size_t>(command.parameterCount), "1");
        db.BeginTrans();
        const bool inserts =
            command.name == "Add_DBN_PromptsNode" || command.name == "Add_Node_History";
        const bool aggregates = command.name == "Get_Last_History_Entry";
        EXPECT_EQ(db.Execute(command.name, args), inserts || aggregates ? 1 : 0);
        db.RollbackTrans();
        if (command.kind == CommandKind::RowReturning) {
            db.Recordset(command.name).Close();
        }
    }
    EXPECT_EQ(names.size(), 52u);
    EXPECT_EQ(rowReturning, 18);
    EXPECT_EQ(db.ExecutedCount(), 52);
    EXPECT_EQ(FindCatalogueCommand("Update_DBN_Node"), nullptr);  // never executed: left out
}

TEST(Execution, TextArgumentsMeetIntegerColumns) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    DataBase db;
    ASSERT_EQ(db.Execute("Get_DBN_Node", {"1", "2", "5", "15"}), 1);
    RowSet& node = db.Recordset("Get_DBN_Node");
    EXPECT_EQ(node.Field("NodeNumber").ToInt16(), 5);
    EXPECT_EQ(node.Field("NodeDescription").ToText(), "Support directory");
    // Stored whole numbers come back as integers, not as text.
    EXPECT_TRUE(std::holds_alternative<std::int64_t>(node.Field("MaxMatch").Raw()));
    node.Close();

    EXPECT_EQ(db.Execute("Add_DBN_PromptsNode", {"1", "2", "12", "0", "3", "5", "MSG"}), 1);
    // Stored as numbers, not as the texts given (typeof on the file, the
    // column types on the server).
    EXPECT_EQ(
        root.QueryText(root.OnServer()
                           ? "SELECT pg_typeof(PromptNumber)::text || "
                             "pg_typeof(PromptNodeType)::text || "
                             "(PromptNumber + PromptNodeNumber) FROM Detail_DBN_Prompts WHERE "
                             "PartID = 2 AND NodeMasterID = 5 AND PromptNumber = 12"
                           : "SELECT typeof(PromptNumber) || typeof(PromptNodeType) || "
                             "(PromptNumber + PromptNodeNumber) FROM Detail_DBN_Prompts WHERE "
                             "PartID = 2 AND NodeMasterID = 5 AND PromptNumber = 12"),
        root.OnServer() ? "smallinttext15" : "integertext15");
}

}  // namespace
}  // namespace dbn
