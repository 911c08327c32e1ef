// Where the configuration database is looked for.

#include "database/data_location.h"
#include "database/data_location_internal.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <optional>

namespace dbn {
namespace {

namespace fs = std::filesystem;

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
    std::string pattern = (fs::temp_directory_path() / "dbn-location-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    const fs::path primary = pattern;
    fs::create_directories(primary / "Corvell");
    EXPECT_EQ(detail::ProductFolderUnder(primary.string(), "/no/such/root"),
              "/no/such/root/Corvell/Sonavis+/");
    fs::create_directories(primary / "Corvell" / "Sonavis+");
    // A trailing "/" on either side does not double the separator.
    EXPECT_EQ(detail::ProductFolderUnder(primary.string() + "/", "/elsewhere"),
              primary.string() + "/Corvell/Sonavis+/");
    fs::remove_all(primary);

    {
        ScopedVariable xdg("XDG_DATA_HOME", "/data/user");
        ScopedVariable home("HOME", "/home/op/");
        EXPECT_EQ(detail::UserDataRoot(), "/data/user");
        ScopedVariable emptyXdg("XDG_DATA_HOME", "");
        EXPECT_EQ(detail::UserDataRoot(), "/home/op/.local/share");
        ScopedVariable noXdg("XDG_DATA_HOME", nullptr);
        EXPECT_EQ(detail::UserDataRoot(), "/home/op/.local/share");
        if (!fs::is_directory("/var/lib/Corvell/Sonavis+")) {
            EXPECT_EQ(GetProductFolder(), "/home/op/.local/share/Corvell/Sonavis+/");
        }
    }
}

TEST(DataLocation, OverrideAnswersForBothSourcesAndNamesTheFileInTheConnectionString) {
    SetDataRootOverride("/srv/lab/");
    EXPECT_EQ(GetProductFolder(), "/srv/lab/Corvell/Sonavis+/");
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
