// Every column accepts the same whole numbers on both engines: 16-bit node,
// configuration and partition keys, 32-bit sequence numbers, 64-bit
// settings. A copy of a value beyond its column's range is refused before
// anything is written.
#include "database/configuration_copy.h"
#include "database/database_errors.h"
#include "error_of.h"
#include "temp_database.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace dbn {
namespace {

using testing::ErrorOf;
using testing::TempDataRoot;

TEST(ValueRanges, EachKeyColumnTakesItsRangeOnBothEngines) {
    TempDataRoot root;
    const std::string dir =
        "INSERT INTO Detail_DIR (ConfigID, PartID, SequenceNo, NodeMasterID) VALUES (1, 1, ";
    const std::string pool =
        "INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, NodeNumber) VALUES (1, 1, "
        "0, ";
    struct Case {
        std::string sql;
        bool accepted;
    };
    for (const Case& c : {
             Case{dir + "40000, 1)", true},
             Case{dir + "2147483647, 1)", true},
             Case{dir + "2147483648, 1)", false},
             Case{dir + "1, 32768)", false},
             Case{pool + "32767)", true},
             Case{pool + "32768)", false},
             Case{pool + "-32769)", false},
         }) {
        bool accepted = true;
        try {
            root.Exec(c.sql);
        } catch (const std::runtime_error&) {
            accepted = false;
        }
        EXPECT_EQ(accepted, c.accepted) << c.sql;
    }
    // A directory of more than 32,767 names.
    EXPECT_EQ(root.QueryInt("SELECT max(SequenceNo) FROM Detail_DIR"), 2147483647);
}

TEST(ValueRanges, ACopyOfAValueBeyondItsColumnIsRefusedBeforeAnythingIsWritten) {
    TempDataRoot root;
    DBN_FILE_TEST_ONLY(root);
    // A file made before the ranges were stated: its table has no CHECK.
    root.Exec(
        "DROP TABLE Detail_DIR; CREATE TABLE Detail_DIR (ConfigID INTEGER NOT NULL, PartID "
        "INTEGER NOT NULL, SequenceNo INTEGER NOT NULL, LastName TEXT, FirstName TEXT, Extension "
        "TEXT, NamePrompt TEXT, \"Password\" TEXT, NodeMasterID INTEGER NOT NULL, PRIMARY KEY "
        "(ConfigID, PartID, NodeMasterID, SequenceNo)) STRICT; INSERT INTO Detail_DIR (ConfigID, "
        "PartID, SequenceNo, NodeMasterID) VALUES (1, 2, 3000000000, 4)");
    const std::string target = root.Root() + "/copy.mdb";
    const ComponentError error = ErrorOf([&] {
        CopyConfiguration(DatabaseTarget::SqliteFile(root.DatabasePath()),
                          DatabaseTarget::SqliteFile(target), ExistingDatabase::Refuse);
    });
    EXPECT_EQ(error.Number(), kErrValueOutOfRange);
    EXPECT_EQ(error.Description(),
              "Nothing was copied: the row (ConfigID 1, PartID 2, SequenceNo 3000000000, "
              "NodeMasterID 4) of Detail_DIR holds 3000000000 in SequenceNo, which takes whole "
              "numbers from -2147483648 to 2147483647.");
    EXPECT_FALSE(std::filesystem::exists(target));
}

}  // namespace
}  // namespace dbn
