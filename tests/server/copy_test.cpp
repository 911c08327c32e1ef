// copy between the embedded file and a server, both ways: every table, every
// value exactly, and the server's tables the same as the file's schema.

#include "database/configuration_copy.h"
#include "database/data_location.h"
#include "database/database_engine.h"
#include "database/database_errors.h"
#include "database/database_setup.h"
#include "error_of.h"
#include "temp_database.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

namespace dbn {
namespace {

using testing::ErrorOf;
using testing::ScratchServerDatabase;
using testing::TempDataRoot;

// Every table of a database, as its engine reads it back.
std::vector<TableRows> Dump(const DatabaseTarget& target) {
    auto engine = ConnectEngine(target, std::chrono::milliseconds(1000));
    std::vector<TableRows> tables;
    for (const SchemaTable& table : ConfigurationSchema()) {
        tables.push_back(engine->ReadTable(table));
    }
    return tables;
}

void ExpectSameContent(const std::vector<TableRows>& expected,
                       const std::vector<TableRows>& actual) {
    ASSERT_EQ(expected.size(), actual.size());
    for (std::size_t t = 0; t < expected.size(); ++t) {
        SCOPED_TRACE(ConfigurationSchema()[t].name);
        ASSERT_EQ(expected[t].size(), actual[t].size());
        for (std::size_t r = 0; r < expected[t].size(); ++r) {
            for (std::size_t c = 0; c < expected[t][r].size(); ++c) {
                EXPECT_EQ(expected[t][r][c].Raw(), actual[t][r][c].Raw())
                    << "row " << r << " column " << ConfigurationSchema()[t].columns[c].name;
            }
        }
    }
}

class Copy : public ::testing::Test {
protected:
    void SetUp() override { DBN_REQUIRE_TEST_SERVER(); }
};

TEST_F(Copy, FileToServerAndBackLeavesIdenticalContentWithEveryKindOfValue) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    const DatabaseTarget file = DatabaseTarget::SqliteFile(root.DatabasePath());
    // NULLs, empty texts, quotes, control and non-ASCII characters, and the
    // boundary numbers of 16-bit keys and 64-bit values.
    {
        auto engine = ConnectEngine(file, std::chrono::milliseconds(1000));
        const SchemaTable& pool = *FindSchemaTable("Node_General_Pool");
        const SchemaTable& names = *FindSchemaTable("Node_Type_Max");
        engine->AppendRows(
            pool, {{FieldValue(std::int64_t{-32768}), FieldValue(std::int64_t{32767}),
                    FieldValue(std::int64_t{0}), FieldValue(std::int64_t{1}), FieldValue(),
                    FieldValue(std::string("")), FieldValue(std::string("it's \"é\" \\ \t\n€"))},
                   {FieldValue(std::int64_t{32767}), FieldValue(std::int64_t{-32768}),
                    FieldValue(std::int64_t{0}), FieldValue(std::int64_t{1}),
                    FieldValue(std::string("Zürich")), FieldValue(), FieldValue()}});
        engine->AppendRows(
            names,
            {{FieldValue(std::int64_t{9}), FieldValue(std::int64_t{9}), FieldValue(std::int64_t{1}),
              FieldValue(std::numeric_limits<std::int64_t>::max())},
             {FieldValue(std::int64_t{9}), FieldValue(std::int64_t{9}), FieldValue(std::int64_t{2}),
              FieldValue(std::numeric_limits<std::int64_t>::min())}});
    }
    const std::vector<TableRows> original = Dump(file);

    ScratchServerDatabase server;
    const DatabaseTarget onServer = DatabaseTarget::Server(server.Uri());
    const std::vector<CopiedTable> up = CopyConfiguration(file, onServer, ExistingDatabase::Refuse);
    ASSERT_EQ(up.size(), ConfigurationSchema().size());
    EXPECT_EQ(up.front().name, "SR_Node_Type_Names");
    EXPECT_EQ(up.front().rows, 18u);
    ExpectSameContent(original, Dump(onServer));

    const std::string back = root.Root() + "/back/Copy.mdb";  // folder made too
    CopyConfiguration(onServer, DatabaseTarget::SqliteFile(back), ExistingDatabase::Refuse);
    ExpectSameContent(original, Dump(DatabaseTarget::SqliteFile(back)));

    // Targets holding a configuration are refused without force, and are
    // replaced whole with it.
    for (const DatabaseTarget& target : {onServer, DatabaseTarget::SqliteFile(back)}) {
        EXPECT_EQ(
            ErrorOf([&] { CopyConfiguration(file, target, ExistingDatabase::Refuse); }).Number(),
            kErrTargetHasConfiguration);
    }
    TempDataRoot empty;
    CopyConfiguration(DatabaseTarget::SqliteFile(empty.DatabasePath()), onServer,
                      ExistingDatabase::Replace);
    const std::vector<TableRows> replaced = Dump(onServer);
    for (std::size_t t = 0; t < replaced.size(); ++t) {
        // Only the version row of the new schema.
        EXPECT_EQ(replaced[t].size(), ConfigurationSchema()[t].name == "Schema_Version" ? 1u : 0u)
            << ConfigurationSchema()[t].name;
    }
}

// init --force on a server first keeps the configuration it replaces in an
// SQLite file (named, or in the database folder), from which copy puts it
// back.
TEST_F(Copy, ReplacingAServersConfigurationKeepsItInAFileThatCopyPutsBack) {
    TempDataRoot root;
    ScratchServerDatabase scratch;
    const DatabaseTarget server = DatabaseTarget::Server(scratch.Uri());
    CreateConfigurationDatabase(server, true, ExistingDatabase::Refuse);
    testing::PgExec(testing::ConnectTo(scratch.Uri()).get(),
                    "UPDATE Node_DBN SET NodeDescription = 'Kept' WHERE NodeNumber = 1");
    const std::vector<TableRows> before = Dump(server);

    const std::string named = root.Root() + "/before-init.mdb";
    EXPECT_EQ(CreateConfigurationDatabase(server, false, ExistingDatabase::Replace, named), named);
    ExpectSameContent(before, Dump(DatabaseTarget::SqliteFile(named)));
    EXPECT_TRUE(Dump(server)[0].empty());

    // Without a name: a time-stamped file in the database folder.
    const std::optional<std::string> stamped =
        CreateConfigurationDatabase(server, true, ExistingDatabase::Replace);
    ASSERT_TRUE(stamped.has_value());
    const std::string name = std::filesystem::path(*stamped).filename().string();
    EXPECT_EQ(std::filesystem::path(*stamped).parent_path().string() + "/", GetDatabaseFolder());
    EXPECT_TRUE(name.starts_with("NewDB-") && name.ends_with(".bak.mdb") && name.size() == 29)
        << name;
    EXPECT_TRUE(std::filesystem::exists(*stamped));

    CopyConfiguration(DatabaseTarget::SqliteFile(named), server, ExistingDatabase::Replace);
    ExpectSameContent(before, Dump(server));
    // A backup that cannot be written replaces nothing.
    EXPECT_EQ(ErrorOf([&] {
                  CreateConfigurationDatabase(server, false, ExistingDatabase::Replace, named);
              }).Number(),
              kErrDatabaseExists);
    ExpectSameContent(before, Dump(server));
}

// The server's tables are made from the file's schema: same tables, columns
// in the same order, the same keys and NOT NULL rules, the same ranges:
// 16-bit keys, 32-bit sequence numbers.
TEST_F(Copy, TheServersTablesMatchTheSchemaOfTheFile) {
    ScratchServerDatabase server;
    CopyConfiguration(DatabaseTarget::SqliteFile(TempDataRoot().DatabasePath()),
                      DatabaseTarget::Server(server.Uri()), ExistingDatabase::Refuse);
    auto conn = testing::ConnectTo(server.Uri());
    std::string described;
    std::string expected;
    for (const SchemaTable& table : ConfigurationSchema()) {
        PGresult* result =
            PQexec(conn.get(),
                   ("SELECT c.column_name, c.data_type, c.is_nullable, EXISTS (SELECT 1 FROM "
                    "information_schema.key_column_usage k WHERE k.table_name = c.table_name AND "
                    "k.column_name = c.column_name) FROM information_schema.columns c WHERE "
                    "c.table_schema = current_schema() AND c.table_name = lower('" +
                    table.name + "') ORDER BY c.ordinal_position")
                       .c_str());
        for (int row = 0; row < PQntuples(result); ++row) {
            for (int column = 0; column < 4; ++column) {
                described += std::string(PQgetvalue(result, row, column)) + " ";
            }
        }
        PQclear(result);
        for (const SchemaColumn& column : table.columns) {
            std::string name = column.name;
            for (char& c : name) {
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            }
            // The range the file's CHECK states, as the server's type.
            const char* type = column.type == ColumnType::Text ? "text"
                               : column.high == 32767          ? "smallint"
                               : column.high == 2147483647     ? "integer"
                                                               : "bigint";
            expected += name + " " + type + " " + (column.notNull ? "NO" : "YES") + " " +
                        (column.inPrimaryKey ? "t" : "f") + " ";
        }
    }
    EXPECT_EQ(described, expected);
    EXPECT_EQ(ConfigurationSchema().size(), 34u);
}

}  // namespace
}  // namespace dbn
