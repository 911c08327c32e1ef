// Where the configuration database is looked for.

#include "database/data_location.h"
#include "database/data_location_internal.h"
#include "temp_database.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <optional>
#include <utility>

namespace dbn {
namespace {

using testing::TempDataRoot;

// Sets an environment variable (nullptr: unsets it) until destroyed.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) {
            saved_ = old;
        }
        value ? ::setenv(name, value, 1) : ::unsetenv(name);
    }
    ~ScopedVariable() { saved_ ? ::setenv(name_, saved_->c_str(), 1) : ::unsetenv(name_); }

private:
    const char* name_;
    std::optional<std::string> saved_;
};

TEST(DataLocation, PrimaryRootWhenItsProductFolderExistsElseTheUncheckedFallback) {
    TempDataRoot root;  // holds <root>/Corvell/Sonavis+/
    // A trailing "/" on either side does not double the separator.
    EXPECT_EQ(detail::ProductFolderUnder(root.Root() + "/", "/elsewhere"),
              root.Root() + "/Corvell/Sonavis+/");
    EXPECT_EQ(detail::ProductFolderUnder(root.Root() + "/Corvell", "/no/such/root/"),
              "/no/such/root/Corvell/Sonavis+/");
}

TEST(DataLocation, FallbackIsTheUsersDataFolderOrElseTheHomesLocalShare) {
    if (std::filesystem::is_directory("/var/lib/Corvell/Sonavis+")) {
        GTEST_SKIP() << "this machine has the machine-wide product folder";
    }
    ScopedVariable home("HOME", "/home/op/");
    const std::pair<const char*, const char*> cases[] = {
        {"/data/user", "/data/user/Corvell/Sonavis+/"},
        {"", "/home/op/.local/share/Corvell/Sonavis+/"},
        {nullptr, "/home/op/.local/share/Corvell/Sonavis+/"}};
    for (const auto& [xdg, folder] : cases) {
        ScopedVariable variable("XDG_DATA_HOME", xdg);
        EXPECT_EQ(GetProductFolder(), folder);
    }
}

TEST(DataLocation, OverrideAnswersForBothSourcesAndNamesTheFileInTheConnectionString) {
    SetDataRootOverride("/srv/lab/");
    EXPECT_EQ(GetDatabaseFolder(), "/srv/lab/Corvell/Sonavis+/Database/");
    const std::string expected =
        "Provider=SQLite;Data Source=/srv/lab/Corvell/Sonavis+/Database/NewDB.mdb";
    EXPECT_EQ(BuildConnectionString(), expected);
    SetDataRootOverride(std::nullopt);
    EXPECT_NE(BuildConnectionString(), expected);

    EXPECT_EQ(DataSourceOf(expected), "/srv/lab/Corvell/Sonavis+/Database/NewDB.mdb");
    EXPECT_EQ(DataSourceOf("data source=/x/y.mdb;Mode=Share"), "/x/y.mdb");
    EXPECT_EQ(DataSourceOf("Provider=SQLite"), "");
}

}  // namespace
}  // namespace dbn
