// The command catalogue against the real schema.

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

TEST(Catalogue, HoldsTheFortyStatementsOfTheEditor) {
    int rows = 0, saves = 0, copies = 0;
    std::set<std::string_view> names;
    for (const CatalogueCommand& command : CommandCatalogue()) {
        names.insert(command.name);
        if (command.kind == CommandKind::RowReturning) {
            ++rows;
        } else if (command.name.starts_with("Duplicate_")) {
            ++copies;
        } else {
            ++saves;
        }
    }
    EXPECT_EQ(names.size(), 40u);
    EXPECT_EQ(rows, 7);
    EXPECT_EQ(saves, 5);
    EXPECT_EQ(copies, 28);
    EXPECT_EQ(FindCatalogueCommand("Update_DBN_Node"), nullptr);
    EXPECT_EQ(FindCatalogueCommand("Get_DTMF_Node"), nullptr);
}

TEST(Catalogue, KeepsStoredTextsWithTheirStrayBlanks) {
    EXPECT_NE(FindCatalogueCommand("Update_DBN_Node_Part1")->text.find("`GIVEN_SecondMinDigits `"),
              std::string_view::npos);
    EXPECT_NE(
        FindCatalogueCommand("Duplicate_Detail_DIR_Node")->text.find("` Given_DesNodeMasterID`"),
        std::string_view::npos);
    EXPECT_TRUE(FindCatalogueCommand("Duplicate_DetailPrompts_VOX_Node")->text.ends_with("` "));
    EXPECT_EQ(FindCatalogueCommand("Get_Node_Names")->text,
              "SELECT * FROM SR_Node_Type_Names ORDER BY ID");
}

TEST(Translation, NumbersParametersByFirstAppearance) {
    const TranslatedStatement statement = TranslateToSqlite(
        "SELECT `Password`, NodeType FROM `Node_MSG` WHERE A = `Given_A` AND (B = Given_B) AND "
        "C = ` GIVEN_a ` AND D = 'Given_D' AND E = Given_Ex AND F = XGiven_F");
    EXPECT_EQ(statement.sql,
              "SELECT \"Password\", NodeType FROM \"Node_MSG\" WHERE A = ?1 AND (B = ?2) AND "
              "C = ?1 AND D = 'Given_D' AND E = ?3 AND F = XGiven_F");
    EXPECT_EQ(statement.parameters, (std::vector<std::string>{"Given_A", "Given_B", "Given_Ex"}));
}

// Every statement translates to the declared number of parameters and
// prepares against the schema with exactly that many placeholders.
TEST(Catalogue, EveryStatementPreparesWithItsDeclaredParameterCount) {
    TempDataRoot root;
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open_v2(root.DatabasePath().c_str(), &db, SQLITE_OPEN_READONLY, nullptr),
              SQLITE_OK);
    for (const CatalogueCommand& command : CommandCatalogue()) {
        SCOPED_TRACE(std::string(command.name));
        const TranslatedStatement translated = TranslateToSqlite(command.text);
        EXPECT_EQ(translated.parameters.size(), static_cast<std::size_t>(command.parameterCount));
        sqlite3_stmt* statement = nullptr;
        ASSERT_EQ(sqlite3_prepare_v2(db, translated.sql.c_str(), -1, &statement, nullptr),
                  SQLITE_OK)
            << sqlite3_errmsg(db) << "\n"
            << translated.sql;
        EXPECT_EQ(sqlite3_bind_parameter_count(statement), command.parameterCount);
        EXPECT_EQ(sqlite3_stmt_readonly(statement) != 0, command.kind == CommandKind::RowReturning);
        sqlite3_finalize(statement);
    }
    sqlite3_close(db);
}

// Each command runs through DataBase on an empty database with its declared
// number of arguments; each runs in a transaction rolled back afterwards, so
// the one insert leaves nothing for the copies to trip over.
TEST(Catalogue, EveryCommandExecutesOnAnEmptyDatabase) {
    TempDataRoot root;
    DataBase db;
    for (const CatalogueCommand& command : CommandCatalogue()) {
        SCOPED_TRACE(std::string(command.name));
        const std::vector<std::string> args(static_cast<std::size_t>(command.parameterCount), "1");
        db.BeginTrans();
        EXPECT_EQ(db.Execute(command.name, args), command.name == "Add_DBN_PromptsNode" ? 1 : 0);
        db.RollbackTrans();
        if (command.kind == CommandKind::RowReturning) {
            db.Recordset(command.name).Close();
        }
    }
    EXPECT_EQ(db.ExecutedCount(), 40);
}

}  // namespace
}  // namespace dbn
