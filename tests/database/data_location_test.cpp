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

// Saves and restores one environment variable around a test.
class EnvironmentVariable {
public:
    explicit EnvironmentVariable(const char* name) : name_(name) {
        if (const char* value = std::getenv(name)) {
            saved_ = value;
        }
    }
    ~EnvironmentVariable() {
        if (saved_) {
            ::setenv(name_, saved_->c_str(), 1);
        } else {
            ::unsetenv(name_);
        }
    }
    void Set(const char* value) { ::setenv(name_, value, 1); }
    void Unset() { ::unsetenv(name_); }

private:
    const char* name_;
    std::optional<std::string> saved_;
};

class DataLocation : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "dbn-location-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        scratch_ = pattern;
    }
    void TearDown() override {
        SetDataRootOverride(std::nullopt);
        fs::remove_all(scratch_);
    }

    fs::path scratch_;
    EnvironmentVariable xdg_{"XDG_DATA_HOME"};
    EnvironmentVariable home_{"HOME"};
};

TEST_F(DataLocation, PrimaryRootIsUsedWhenItsProductFolderExists) {
    const fs::path primary = scratch_ / "machine";
    fs::create_directories(primary / "Corvell" / "Sonavis+");
    EXPECT_EQ(detail::ProductFolderUnder(primary.string(), "/elsewhere"),
              primary.string() + "/Corvell/Sonavis+/");
    // A trailing "/" on the root does not double the separator.
    EXPECT_EQ(detail::ProductFolderUnder(primary.string() + "/", "/elsewhere"),
              primary.string() + "/Corvell/Sonavis+/");
}

TEST_F(DataLocation, FallbackIsUsedUncheckedWhenThePrimaryProductFolderIsMissing) {
    const fs::path primary = scratch_ / "machine";
    fs::create_directories(primary / "Corvell");  // product folder itself missing
    EXPECT_EQ(detail::ProductFolderUnder(primary.string(), "/no/such/root"),
              "/no/such/root/Corvell/Sonavis+/");
}

TEST_F(DataLocation, UserRootComesFromXdgDataHomeElseFromHome) {
    xdg_.Set("/data/user");
    home_.Set("/home/op");
    EXPECT_EQ(detail::UserDataRoot(), "/data/user");
    xdg_.Set("");
    EXPECT_EQ(detail::UserDataRoot(), "/home/op/.local/share");
    xdg_.Unset();
    home_.Set("/home/op/");
    EXPECT_EQ(detail::UserDataRoot(), "/home/op/.local/share");
}

TEST_F(DataLocation, OverrideAnswersForBothSources) {
    SetDataRootOverride(scratch_.string());
    EXPECT_EQ(GetProductFolder(), scratch_.string() + "/Corvell/Sonavis+/");
    EXPECT_EQ(GetDatabaseFolder(), scratch_.string() + "/Corvell/Sonavis+/Database/");
    // The override wins even when the product folder exists under it.
    fs::create_directories(scratch_ / "Corvell" / "Sonavis+");
    EXPECT_EQ(GetProductFolder(), scratch_.string() + "/Corvell/Sonavis+/");

    SetDataRootOverride(std::nullopt);
    xdg_.Set((scratch_ / "user").c_str());
    if (!fs::is_directory("/var/lib/Corvell/Sonavis+")) {
        EXPECT_EQ(GetProductFolder(), (scratch_ / "user").string() + "/Corvell/Sonavis+/");
    }
}

TEST_F(DataLocation, ConnectionStringNamesTheFileInTheDatabaseFolder) {
    SetDataRootOverride("/srv/lab/");
    const std::string expected =
        "Provider=SQLite;Data Source=/srv/lab/Corvell/Sonavis+/Database/NewDB.mdb";
    EXPECT_EQ(BuildConnectionString(), expected);
    EXPECT_EQ(DataSourceOf(expected), "/srv/lab/Corvell/Sonavis+/Database/NewDB.mdb");
    EXPECT_EQ(DataSourceOf("data source=/x/y.mdb;Mode=Share"), "/x/y.mdb");
    EXPECT_EQ(DataSourceOf("Provider=SQLite"), "");
}

TEST(JoinPath, PutsExactlyOneSlashBetweenParts) {
    EXPECT_EQ(detail::JoinPath("/a", "b"), "/a/b");
    EXPECT_EQ(detail::JoinPath("/a//", "/b"), "/a/b");
    EXPECT_EQ(detail::JoinPath("/", "b"), "/b");
    EXPECT_EQ(detail::JoinPath("", "b"), "/b");
}

}  // namespace
}  // namespace dbn
