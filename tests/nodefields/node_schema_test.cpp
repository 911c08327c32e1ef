#include "nodefields/node_schema.h"
#include "nodefields/node_fields.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

// The schema in docs/ is the one the table makes: after a change of the
// table, `cmake --build build --target node-schema` writes it again.
TEST(NodeSchema, FileInTheTreeIsTheGeneratedOne) {
    std::ifstream file(DBN_SCHEMA_FILE, std::ios::binary);
    ASSERT_TRUE(file) << DBN_SCHEMA_FILE;
    std::ostringstream text;
    text << file.rdbuf();
    EXPECT_EQ(text.str(), dbn::nodefields::NodeSchemaText())
        << "docs/dbn-nodes.schema.json differs from the table of fields; build the target "
           "node-schema";
}

TEST(NodeFields, LabelsAreCountedInCharacters) {
    using dbn::nodefields::LengthRefusal;
    EXPECT_EQ(dbn::nodefields::CharacterCount("Zoë Müller"), 10u);
    EXPECT_FALSE(LengthRefusal(std::string(15, 'a') + std::string(15, 'a'), 30));
    EXPECT_FALSE(LengthRefusal("ééééééééééééééééééééééééééé\u00e9\u00e9\u00e9", 30));
    EXPECT_EQ(LengthRefusal(std::string(31, 'a'), 30),
              "is 31 characters long; at most 30 are allowed");
}

}  // namespace
