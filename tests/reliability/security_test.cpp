// Texts that look like SQL reach the database as values and come back
// verbatim; the database folder and file let only their owner and group write.
#include "reliability_support.h"

#include "database/database_setup.h"

#include <sys/stat.h>

#include <filesystem>

namespace dbn::testing {
namespace {

namespace fs = std::filesystem;
using namespace form::operator_input;

using Security = EditorTest;

TEST_F(Security, LabelsThatLookLikeSqlAreStoredVerbatim) {
    const std::string node = " WHERE PartID = 2 AND NodeNumber = 5";
    const long long tablesBefore = root.QueryInt("SELECT count(*) FROM sqlite_schema");
    for (const std::string label :
         {"'; DROP TABLE Node_DBN; --", "x' OR '1'='1", "Given_ConfigID ?1 :a @b $c",
          "back\\slash %_ \xC3\x9Cn\xC3\xAF \xE2\x9C\x93"}) {
        SCOPED_TRACE(label);
        services.boxes.clear();
        Edit(2, 5, [&](form::GUI& gui) {
            ASSERT_TRUE(Type(gui.txtDescription, label));
            ASSERT_TRUE(Press(gui.cmdApply));
            EXPECT_FALSE(gui.cmdApply.Enabled());
        });
        EXPECT_TRUE(services.boxes.empty()) << BoxTexts("Error") << BoxTexts("Information");
        EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_DBN" + node), label);
        EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_General_Pool" + node +
                                 " AND NodeTypeID = 15"),
                  label);
        Edit(2, 5, [&](form::GUI& gui) { EXPECT_EQ(gui.txtDescription.Text(), label); });
    }
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM sqlite_schema"), tablesBefore);
    EXPECT_EQ(root.QueryInt("SELECT count(*) FROM Node_DBN"), 5);
}

// Whatever the process mask, the database file and the folders made for it
// let their owner and its group write, and nobody else.
TEST(DatabasePermissions, OnlyTheOwnerAndItsGroupMayWriteWhateverTheMask) {
    using fs::perms;
    for (mode_t mask : {mode_t{0}, mode_t{022}, mode_t{077}}) {
        SCOPED_TRACE(mask);
        TempDataRoot root;  // sets the data root; its own file is not looked at
        const fs::path database =
            fs::path(root.Root()) / "site" / "Corvell" / "Database" / "NewDB.mdb";
        const mode_t previous = ::umask(mask);
        CreateConfigurationDatabase(database.string(), true);
        CreateConfigurationDatabase(database.string(), false, ExistingDatabase::Replace);
        ::umask(previous);
        for (fs::path path = database; path != fs::path(root.Root()); path = path.parent_path()) {
            EXPECT_EQ(fs::status(path).permissions() &
                          (perms::owner_write | perms::group_write | perms::others_write),
                      perms::owner_write | perms::group_write)
                << path;
        }
    }
}

}  // namespace
}  // namespace dbn::testing
