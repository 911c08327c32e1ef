// The nodes' text form without a database: stable output, stored values
// kept as stored, reading back, and every kind of bad file refused with the
// JSON path of what is wrong.
#include "nodetext/text_form.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace dbn::nodetext {
namespace {

TextNode SampleNode(std::int64_t number) {
    TextNode node;
    node.number = number;
    node.columns = {{"NodeDescription", std::string("Staff \u00e9")},
                    {"Method", std::int64_t{0}},
                    {"DirectoryNodeNumber", std::int64_t{1}},
                    {"FirstLanguage", std::int64_t{1}},
                    {"SecondLanguage", std::int64_t{0}},
                    {"FirstMode", std::int64_t{1}},
                    {"FirstMinDigits", std::int64_t{3}},
                    {"FirstMaxDigits", std::int64_t{5}},
                    {"SecondMode", std::int64_t{2}},
                    {"SecondMinDigits", std::int64_t{1}},
                    {"SecondMaxDigits", std::int64_t{5}},
                    {"DigitTimeout", std::int64_t{10}},
                    {"SelectionTimeout", std::int64_t{5}},
                    {"RetryLimit", std::int64_t{3}},
                    {"Confirm", std::int64_t{1}},
                    {"MaxMatch", std::int64_t{3}},
                    {"PlayName", std::int64_t{1}}};
    for (const char* role :
         {"Greeting", "ValidMatch", "Abort", "Star", "Pound", "Zero", "FirstPrompt", "SecondPrompt",
          "Timeout", "Invalid", "BeforePrompt", "AfterPrompt", "ConfirmationExit"}) {
        SetRefColumns(node, role, {std::string("MSG"), std::int64_t{4}, std::int64_t{0}});
    }
    node.prompts = {{std::string("MSG"), std::int64_t{7}, std::int64_t{0}},
                    {std::string("NOOP"), std::int64_t{0}, std::int64_t{814}}};
    node.modified = std::string("2024-03-04 09:15:00");
    return node;
}

NodeDocument SampleDocument() {
    NodeDocument document;
    document.configuration = 1;
    document.partition = 2;
    document.nodes = {SampleNode(0), SampleNode(5)};
    return document;
}

nlohmann::json SampleJson() {
    return nlohmann::json::parse(DocumentText(SampleDocument()));
}

std::vector<std::string> ProblemsOf(const std::string& text) {
    std::vector<std::string> texts;
    for (const Problem& problem : ReadDocument(text).problems) {
        texts.push_back(ProblemText(problem));
    }
    return texts;
}

TEST(TextFormTest, WritesFixedKeyOrderTwoSpaceIndentationAndReadsItBack) {
    const std::string text = DocumentText(SampleDocument());
    EXPECT_EQ(text, DocumentText(SampleDocument()));
    EXPECT_EQ(
        text.rfind("{\n  \"format\": \"dbn-nodes\",\n  \"version\": 1,\n  \"configuration\": 1,\n",
                   0),
        0u);
    const std::vector<std::string> order = {
        "\"number\"",      "\"template\"",     "\"label\"",        "\"method\"",
        "\"directory\"",   "\"languages\"",    "\"greeting\"",     "\"actions\"",
        "\"Valid Match\"", "\"Zero\"",         "\"stages\"",       "\"minDigits\"",
        "\"timeout\"",     "\"invalid\"",      "\"digitTimeout\"", "\"selectionTimeout\"",
        "\"retryLimit\"",  "\"confirmation\"", "\"beforeNames\"",  "\"prompts\"",
        "\"exitPrompt\"",  "\"playName\"",     "\"modified\"",     "\"stored\""};
    std::size_t at = 0;
    for (const std::string& key : order) {
        const std::size_t found = text.find(key, at);
        ASSERT_NE(found, std::string::npos) << key << " after " << at;
        at = found;
    }
    EXPECT_NE(text.find("\"template\": true"), std::string::npos);
    // Node 5 is no template: the key is left out.
    EXPECT_EQ(text.find("\"template\"", text.find("\"number\": 5")), std::string::npos);

    const ReadResult read = ReadDocument(text);
    ASSERT_TRUE(read.document) << (read.problems.empty() ? "" : ProblemText(read.problems[0]));
    ASSERT_EQ(read.document->nodes.size(), 2u);
    EXPECT_TRUE(Changes(SampleNode(5), read.document->nodes[1]).empty());
    EXPECT_EQ(read.document->nodes[1].stored, Fingerprint(SampleNode(5)));
    EXPECT_EQ(read.document->configuration, 1);
    EXPECT_EQ(read.document->partition, 2);
}

// Values without a name, and Nulls, are written as stored and compare equal
// when read back; the fingerprint follows every field.
TEST(TextFormTest, KeepsStoredValuesTheEditorWouldReplace) {
    TextNode odd = SampleNode(3);
    odd.columns["Method"] = std::int64_t{5};
    odd.columns["FirstLanguage"] = std::int64_t{7};
    odd.columns["Confirm"] = std::int64_t{2};
    odd.columns["DirectoryNodeNumber"] = std::int64_t{0};
    odd.columns["RetryLimit"] = Value{};
    SetRefColumns(odd, "Star", {});
    NodeDocument document;
    document.nodes = {odd};
    const std::string text = DocumentText(document);
    for (const char* shown : {"\"method\": 5", "\"first\": 7", "\"enabled\": 2", "\"directory\": 0",
                              "\"retryLimit\": null", "\"Star\": null"}) {
        EXPECT_NE(text.find(shown), std::string::npos) << shown;
    }
    const ReadResult read = ReadDocument(text);
    ASSERT_TRUE(read.document);
    EXPECT_TRUE(Changes(odd, read.document->nodes[0]).empty());

    TextNode changed = odd;
    changed.columns["NodeDescription"] = std::string("Other");
    EXPECT_NE(Fingerprint(changed), Fingerprint(odd));
    const std::vector<FieldChange> changes = Changes(odd, changed);
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].path, "label");
    EXPECT_EQ(changes[0].before, "\"Staff \u00e9\"");
    EXPECT_EQ(changes[0].after, "\"Other\"");
}

struct BadFile {
    const char* what;
    std::string pointer;  // in the first node's JSON, or "" for the whole document
    nlohmann::json value;
    std::string problem;
};

TEST(TextFormTest, RefusesEveryBadPartWithItsPath) {
    const std::vector<BadFile> cases = {
        {"wrong type", "/label", 5, "nodes[1].label: must be a text, not 5"},
        {"unknown field", "/colour", "red", "nodes[1].colour: unknown field"},
        {"unknown target field", "/greeting/via", 1, "nodes[1].greeting.via: unknown field"},
        {"number beyond any column", "/directory", 18446744073709551615ULL,
         "nodes[1].directory: 18446744073709551615 is outside -9223372036854775808 to "
         "9223372036854775807"},
        {"node number beyond 16 bits", "/number", 40000,
         "nodes[1].number: 40000 is outside -32768 to 32767"},
        {"real number", "/stages/0/minDigits", 2.5,
         "nodes[1].stages[0].minDigits: must be a whole number, not 2.5"},
        {"unknown name", "/method", "Fast",
         "nodes[1].method: \"Fast\" is not one of \"Custom\", \"Default Last Name\""},
        {"huge text", "/label", std::string(10 * 1024 * 1024, 'x'),
         "nodes[1].label: is 10485760 characters long; at most 1000 are allowed"},
        {"label over 1000 characters", "/label", std::string(999, 'x') + "\u00e9\u00e9",
         "nodes[1].label: is 1001 characters long; at most 1000 are allowed"},
        {"stored not a fingerprint", "/stored", "abc",
         "nodes[1].stored: must be 16 hexadecimal digits, not \"abc\""},
        {"modified not a text", "/modified", 5, "nodes[1].modified: must be a text or null, not 5"},
        {"missing field", "/retryLimit", nullptr, "nodes[1].retryLimit: is missing"},
        {"target without number",
         "/timeout",
         {{"type", "MSG"}},
         "nodes[1].timeout: must have both \"type\" and \"number\""},
        {"one stage", "/stages", nlohmann::json::array({nlohmann::json::object()}),
         "nodes[1].stages: must be a list of 2 objects"},
        {"template elsewhere", "/template", true,
         "nodes[1].template: only node 0 is the template, and it is marked true"},
        {"repeated number", "/number", 0, "nodes[1].number: 0 is already the number of nodes[0]"},
        {"wrong format", "", "", "format: must be \"dbn-nodes\""},
    };
    for (const BadFile& bad : cases) {
        nlohmann::json json = SampleJson();
        if (bad.pointer.empty()) {
            json["format"] = "nodes";
        } else if (bad.value.is_null() && bad.pointer == "/retryLimit") {
            json["nodes"][1].erase("retryLimit");
        } else {
            json["nodes"][1][nlohmann::json::json_pointer(bad.pointer)] = bad.value;
        }
        const ReadResult read = ReadDocument(json.dump());
        EXPECT_FALSE(read.document) << bad.what;
        ASSERT_EQ(read.problems.size(), 1u) << bad.what;
        EXPECT_EQ(ProblemText(read.problems[0]), bad.problem) << bad.what;
    }
}

TEST(TextFormTest, MalformedJsonNamesLineAndColumn) {
    const std::vector<std::string> problems = ProblemsOf("{\n  \"format\": \"dbn-nodes\",\n  x\n}");
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].rfind("line 3, column 3: malformed JSON: ", 0), 0u) << problems[0];
    EXPECT_EQ(ProblemsOf("[1]"), std::vector<std::string>{"the document must be a JSON object"});
}

}  // namespace
}  // namespace dbn::nodetext
