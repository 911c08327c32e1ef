// Server connection strings that libpq cannot use are told in libpq's own
// words, naming the bad part, before any server is tried; a password in
// them is never shown.
#include "database/database.h"
#include "database/database_errors.h"
#include "error_of.h"

#include <gtest/gtest.h>

namespace dbn {
namespace {

using testing::ErrorOf;

TEST(ConnectionString, EachUnusableOneIsToldForWhatItIs) {
    struct Case {
        const char* target;
        const char* names;  // the part of the message naming what is wrong
    };
    for (const Case& c : {
             Case{"connect_timeout=abc host=/nonexistent",
                  "\"abc\" for connection option "
                  "\"connect_timeout\""},
             Case{"sslmode=bogus host=/nonexistent", "invalid sslmode value: \"bogus\""},
             Case{"port=99999 host=/nonexistent", "invalid port number: \"99999\""},
             Case{"postgresql://[::1/dbn", "matching \"]\" in IPv6 host address"},
             Case{"postgresql://u:Sesame@[::1/dbn", "matching \"]\" in IPv6 host address"},
         }) {
        SCOPED_TRACE(c.target);
        DataBase db(DatabaseTarget::Server(c.target));
        const ComponentError error = ErrorOf([&] { db.Execute("Get_Node_Names"); });
        EXPECT_EQ(error.Number(), kErrConnectionString);
        EXPECT_EQ(error.Source(), "PostgreSQL");
        const std::string& told = error.Description();
        EXPECT_NE(told.find("connection string"), std::string::npos) << told;
        EXPECT_NE(told.find(c.names), std::string::npos) << told;
        EXPECT_EQ(told.find("cannot be reached"), std::string::npos) << told;
        EXPECT_EQ(told.find("unreadable"), std::string::npos) << told;
        EXPECT_EQ(told.find("Sesame"), std::string::npos) << told;
    }
}

}  // namespace
}  // namespace dbn
