// Nodes as text against a database: export, then apply what came back,
// changed or not. Every written column is checked in the tables; every
// refusal writes nothing.
#include "session_support.h"

#include "core/component_error.h"
#include "core/node_types.h"
#include "database/database.h"
#include "nodefields/node_fields.h"
#include "nodefields/save_rules.h"
#include "nodetext/text_form.h"
#include "session/nodes/apply_nodes.h"
#include "session/nodes/node_history.h"
#include "session/nodes/node_text_store.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace dbn::testing {
namespace {

using nlohmann::json;
using session::ApplyOptions;
using session::ApplyResult;
using session::NodeOutcome;

class NodeTextTest : public SessionTest {
protected:
    TempDataRoot root{TempDataRoot::Content::Demo};
    DataBase db;

    std::string Export(std::int16_t partition = 1) {
        return nodetext::DocumentText(session::ExportNodes(db, 1, partition));
    }
    json Exported() { return json::parse(Export()); }

    ApplyResult Apply(const json& document, ApplyOptions options = {}) {
        nodetext::ReadResult read = nodetext::ReadDocument(document.dump());
        EXPECT_TRUE(read.problems.empty()) << nodetext::ProblemText(
            read.problems.empty() ? nodetext::Problem{} : read.problems[0]);
        return read.document ? session::ApplyNodes(db, *read.document, options) : ApplyResult{};
    }

    std::string Stored(const std::string& column, int node = 1) {
        return root.QueryText("SELECT " + column +
                              " FROM Node_DBN WHERE ConfigID = 1 AND PartID = 1 AND NodeNumber = " +
                              std::to_string(node));
    }

    std::string FileBytes() {
        std::ifstream file(root.DatabasePath(), std::ios::binary);
        std::ostringstream bytes;
        bytes << file.rdbuf();
        return bytes.str();
    }

    static std::vector<std::string> Texts(const std::vector<nodetext::Problem>& problems) {
        std::vector<std::string> texts;
        for (const nodetext::Problem& problem : problems) {
            texts.push_back(nodetext::ProblemText(problem));
        }
        return texts;
    }
};

TEST_F(NodeTextTest, ExportIsStableInNumberOrderAndNamesOnlyWhatItIsAsked) {
    const std::string text = Export();
    EXPECT_EQ(text, Export());
    const json document = json::parse(text);
    ASSERT_EQ(document["nodes"].size(), 3u);
    EXPECT_EQ(document["nodes"][0]["number"], 0);
    EXPECT_EQ(document["nodes"][0]["template"], true);
    EXPECT_EQ(document["nodes"][1]["label"], "Staff directory");
    EXPECT_EQ(document["nodes"][1]["actions"]["Valid Match"],
              json({{"type", "XFER"}, {"number", 1}}));
    EXPECT_EQ(document["nodes"][1]["confirmation"]["prompts"][0],
              json({{"type", "MSG"}, {"number", 7}}));
    EXPECT_EQ(document["nodes"][2]["method"], "Default Last Name");

    const json named = json::parse(nodetext::DocumentText(session::ExportNodes(db, 1, 1, {2})));
    ASSERT_EQ(named["nodes"].size(), 1u);
    EXPECT_EQ(named["nodes"][0], document["nodes"][2]);
    EXPECT_THROW(session::ExportNodes(db, 1, 1, {2, 7}), ComponentError);
}

// In the server pass the demo file is made too: both engines must give the
// same bytes, fingerprints included.
TEST_F(NodeTextTest, BothEnginesExportTheSameText) {
    if (!root.OnServer()) {
        GTEST_SKIP() << "compares the server's export with the file's";
    }
    const std::string server = Export();
    const std::string uri = ::getenv("DBN_DATABASE");
    ::unsetenv("DBN_DATABASE");
    std::string file;
    {
        DataBase fileDb;
        file = nodetext::DocumentText(session::ExportNodes(fileDb, 1, 1));
    }
    ::setenv("DBN_DATABASE", uri.c_str(), 1);
    EXPECT_EQ(server, file);
}

TEST_F(NodeTextTest, UnchangedExportAppliesWithoutWriting) {
    const std::string text = Export();
    const std::string before = FileBytes();
    const ApplyResult result = Apply(json::parse(text));
    EXPECT_TRUE(result.problems.empty());
    ASSERT_EQ(result.nodes.size(), 3u);
    for (const session::AppliedNode& node : result.nodes) {
        EXPECT_EQ(node.outcome, NodeOutcome::Unchanged);
    }
    EXPECT_FALSE(result.written);
    EXPECT_EQ(Export(), text);
    if (!root.OnServer()) {
        EXPECT_EQ(FileBytes(), before);
    }
    EXPECT_EQ(session::ApplyReportText(result, session::ApplyReport::Written, false),
              "DBN 0: unchanged\nDBN 1: unchanged\nDBN 2: unchanged\n"
              "3 nodes: 0 created, 0 changed, 3 unchanged; nothing to write\n");
}

// Each field of the form, changed alone: the node is reported with exactly
// that field and the column holds the new value.
struct FieldCase {
    std::string pointer;
    json value;
    std::string path;
    std::string column;
    std::string stored;
};

TEST_F(NodeTextTest, EveryFieldChangedAloneWritesItsColumn) {
    const json msg = {{"type", "MSG"}, {"number", 20}};
    const std::vector<FieldCase> cases = {
        {"/label", "Front desk", "label", "NodeDescription", "Front desk"},
        {"/directory", 2, "directory", "DirectoryNodeNumber", "2"},
        {"/languages/first", "French", "languages.first", "FirstLanguage", "2"},
        {"/languages/second", "English", "languages.second", "SecondLanguage", "1"},
        {"/greeting",
         {{"type", "LIST"}, {"number", 3}},
         "greeting",
         "GreetingNodeType || GreetingNodeNumber || GreetingNodeTypeID",
         "LIST38"},
        {"/actions/Valid Match",
         {{"type", "XFER"}, {"number", 2}},
         "actions.Valid Match",
         "ValidMatchNodeNumber",
         "2"},
        {"/actions/Abort",
         {{"type", "CMD"}, {"number", 3}},
         "actions.Abort",
         "AbortNodeTypeID",
         "1"},
        {"/actions/Star", {{"type", "MSG"}, {"number", 9}}, "actions.Star", "StarNodeType", "MSG"},
        {"/actions/Pound",
         {{"type", "M_ON"}, {"number", 5}},
         "actions.Pound",
         "PoundNodeTypeID",
         "817"},
        {"/actions/Zero", {{"type", "DBN"}, {"number", 2}}, "actions.Zero", "ZeroNodeTypeID", "15"},
        {"/stages/0/mode", "Both Names", "stages[0].mode", "FirstMode", "3"},
        {"/stages/0/minDigits", 2, "stages[0].minDigits", "FirstMinDigits", "2"},
        {"/stages/0/maxDigits", 7, "stages[0].maxDigits", "FirstMaxDigits", "7"},
        {"/stages/0/prompt", msg, "stages[0].prompt", "FirstPromptNodeNumber", "20"},
        {"/stages/1/mode", "None", "stages[1].mode", "SecondMode", "0"},
        {"/stages/1/minDigits", 2, "stages[1].minDigits", "SecondMinDigits", "2"},
        {"/stages/1/maxDigits", 4, "stages[1].maxDigits", "SecondMaxDigits", "4"},
        {"/stages/1/prompt", msg, "stages[1].prompt", "SecondPromptNodeNumber", "20"},
        {"/timeout", {{"type", "TIME"}, {"number", 1}}, "timeout", "TimeoutNodeType", "TIME"},
        {"/invalid", {{"type", "DATE"}, {"number", 2}}, "invalid", "InvalidNodeTypeID", "3"},
        {"/digitTimeout", 12, "digitTimeout", "DigitTimeout", "12"},
        {"/selectionTimeout", 30, "selectionTimeout", "SelectionTimeout", "30"},
        {"/retryLimit", 5, "retryLimit", "RetryLimit", "5"},
        {"/confirmation/enabled", false, "confirmation.enabled", "Confirm", "0"},
        {"/confirmation/maxMatches", 4, "confirmation.maxMatches", "MaxMatch", "4"},
        {"/confirmation/beforeNames", msg, "confirmation.beforeNames", "BeforePromptNodeNumber",
         "20"},
        {"/confirmation/afterNames",
         {{"type", "LIST"}, {"number", 1}},
         "confirmation.afterNames",
         "AfterPromptNodeType",
         "LIST"},
        {"/confirmation/exitPrompt",
         {{"type", "NOOP"}, {"number", 0}},
         "confirmation.exitPrompt",
         "ConfirmationExitNodeTypeID",
         "814"},
        {"/playName", false, "playName", "PlayName", "0"},
        {"/method", "Default Last Name", "method", "Method", "1"},
    };
    for (const FieldCase& field : cases) {
        json document = Exported();
        document["nodes"][1][json::json_pointer(field.pointer)] = field.value;
        const ApplyResult result = Apply(document);
        ASSERT_EQ(Texts(result.problems), std::vector<std::string>{}) << field.pointer;
        ASSERT_EQ(result.nodes.size(), 3u);
        EXPECT_EQ(result.nodes[0].outcome, NodeOutcome::Unchanged) << field.pointer;
        EXPECT_EQ(result.nodes[1].outcome, NodeOutcome::Changed) << field.pointer;
        ASSERT_EQ(result.nodes[1].changes.size(), 1u) << field.pointer;
        EXPECT_EQ(result.nodes[1].changes[0].path, field.path);
        EXPECT_EQ(Stored(field.column), field.stored) << field.pointer;
    }
    EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 1 AND "
                             "NodeTypeID = 15 AND NodeNumber = 1"),
              "Front desk");
}

// Only the changed column moves: the rest of the row, the prompts and the
// other nodes stay as they were.
TEST_F(NodeTextTest, OneChangedFieldLeavesEverythingElseAlone) {
    auto before = session::ReadStoredNodes(db, 1, 1);
    json document = Exported();
    document["nodes"][1]["confirmation"]["prompts"][1] = {{"type", "LIST"}, {"number", 2}};
    const ApplyResult result = Apply(document);
    ASSERT_TRUE(result.written);
    auto after = session::ReadStoredNodes(db, 1, 1);
    EXPECT_EQ(after[1].columns, before[1].columns);
    EXPECT_EQ(after[2].columns, before[2].columns);
    ASSERT_EQ(after[1].prompts.size(), 9u);
    EXPECT_EQ(after[1].prompts[1].type, nodetext::Value{std::string("LIST")});
    EXPECT_EQ(after[1].prompts[1].typeID, nodetext::Value{std::int64_t{8}});
    EXPECT_EQ(after[1].prompts[2].number, before[1].prompts[2].number);
    EXPECT_EQ(
        session::ApplyReportText(result, session::ApplyReport::Written, true),
        "DBN 0: unchanged\nDBN 1: changed: confirmation.prompts\n"
        "  confirmation.prompts: [{\"type\":\"MSG\",\"number\":7},{\"type\":\"MSG\",\"number\":8}"
        ",{\"type\":\"MSG\",\"number\":9},{\"type\":\"MSG\",\"number\":1},{\"type\":\"MSG\","
        "\"number\":1},{\"type\":\"MSG\",\"number\":1},{\"type\":\"MSG\",\"number\":1},{\"type"
        "\":\"MSG\",\"number\":1},{\"type\":\"MSG\",\"number\":1}] -> [{\"type\":\"MSG\",\"num"
        "ber\":7},{\"type\":\"LIST\",\"number\":2},{\"type\":\"MSG\",\"number\":9},{\"type\":"
        "\"MSG\",\"number\":1},{\"type\":\"MSG\",\"number\":1},{\"type\":\"MSG\",\"number\":1}"
        ",{\"type\":\"MSG\",\"number\":1},{\"type\":\"MSG\",\"number\":1},{\"type\":\"MSG\",\""
        "number\":1}]\nDBN 2: unchanged\n"
        "These references point at nodes that do not exist: LIST 2.\n"
        "3 nodes: 0 created, 1 changed, 2 unchanged; written\n");
}

struct Refusal {
    const char* what;
    std::vector<std::pair<std::string, json>> edits;  // on node 1
    std::string problem;
};

TEST_F(NodeTextTest, EachRefusalIsListedAndNothingIsWritten) {
    const std::vector<Refusal> cases = {
        {"digits out of range",
         {{"/stages/0/minDigits", 0}},
         "nodes[1].stages[0].minDigits: 0 is outside 1 to 9"},
        {"label with a double quote",
         {{"/label", "Say \"hi\""}},
         "nodes[1].label: Double quotes and continuous single quotes are not allowed in the Label "
         "field"},
        {"type not offered",
         {{"/actions/Abort", {{"type", "DIR"}, {"number", 1}}}},
         "nodes[1].actions.Abort.type: \"DIR\" is not offered for an action, timeout or invalid "
         "target in this partition"},
        {"unknown type",
         {{"/greeting", {{"type", "FOO"}, {"number", 1}}}},
         "nodes[1].greeting.type: \"FOO\" is not a node type"},
        {"number over the limit",
         {{"/greeting", {{"type", "MSG"}, {"number", 100}}}},
         "nodes[1].greeting.number: 100 is outside 1 to 99"},
        {"numbered NOOP",
         {{"/actions/Star", {{"type", "NOOP"}, {"number", 3}}}},
         "nodes[1].actions.Star.number: NOOP takes no number; it must be 0, not 3"},
        {"same match twice",
         {{"/stages/1/mode", "Last Name"}},
         "nodes[1].stages[1].mode: Second Match must be different from the First Match.  Please "
         "select another option in Second Match."},
        {"min above max",
         {{"/stages/0/minDigits", 6}},
         "nodes[1].stages[0].minDigits: Min Digits value must be less than or equal to Max Digits "
         "value."},
        {"no language",
         {{"/method", "Default Last Name"}, {"/languages/first", "None"}},
         "nodes[1].languages.first: Please select a language in Language 1"},
        {"odd flag",
         {{"/confirmation/enabled", 2}},
         "nodes[1].confirmation.enabled: must be true or false"},
        {"unnamed method",
         {{"/method", 4}},
         "nodes[1].method: must be one of \"Custom\", \"Default Last Name\""},
        {"new node over the limit",
         {{"/number", 21}, {"/stored", nullptr}},
         "nodes[1].number: 21 is outside 1 to 20"},
    };
    const std::string text = Export();
    const std::string bytes = FileBytes();
    for (const Refusal& refusal : cases) {
        json document = json::parse(text);
        for (const auto& [pointer, value] : refusal.edits) {
            if (value.is_null()) {  // null leaves the field out
                document["nodes"][1].erase(pointer.substr(1));
            } else {
                document["nodes"][1][json::json_pointer(pointer)] = value;
            }
        }
        // A second, valid change in another node is not written either.
        document["nodes"][2]["label"] = "Renamed";
        const ApplyResult result = Apply(document);
        EXPECT_EQ(Texts(result.problems), std::vector<std::string>{refusal.problem})
            << refusal.what;
        EXPECT_FALSE(result.written);
        EXPECT_EQ(Export(), text) << refusal.what;
    }
    if (!root.OnServer()) {
        EXPECT_EQ(FileBytes(), bytes);
    }
    // A file naming another partition than its nodes' is told as such.
    json other = json::parse(text);
    other["configuration"] = 7;
    EXPECT_EQ(Texts(Apply(other).problems),
              std::vector<std::string>{"partition: the file names configuration 7, partition 1, "
                                       "but its nodes are those of configuration 1, partition 1"});
    other["partition"] = 2;
    other["configuration"] = 1;
    EXPECT_EQ(Texts(Apply(other).problems),
              std::vector<std::string>{"partition: the file names configuration 1, partition 2, "
                                       "but its nodes are those of configuration 1, partition 1"});
    for (json& node : other["nodes"]) {
        node.erase("stored");
    }
    other["partition"] = 1;
    other["configuration"] = 7;
    EXPECT_EQ(Texts(Apply(other).problems),
              std::vector<std::string>{
                  "partition: configuration 7, partition 1 has no dial-by-name nodes in this "
                  "database"});
}

TEST_F(NodeTextTest, NodeChangedSinceTheExportIsRefusedUnlessForced) {
    json document = Exported();
    document["nodes"][1]["retryLimit"] = 4;
    root.Exec(
        "UPDATE Node_DBN SET NodeDescription = 'Changed meanwhile' WHERE PartID = 1 AND "
        "NodeNumber = 1");
    ApplyResult refused = Apply(document);
    EXPECT_EQ(Texts(refused.problems),
              std::vector<std::string>{
                  "nodes[1]: DBN 1 was changed in the database since the export (it now differs "
                  "from the file in: label, retryLimit); --force writes the file over it"});
    EXPECT_EQ(Stored("RetryLimit"), "3");

    // A change to the prompt rows alone is a change since the export too.
    json prompts = Exported();
    prompts["nodes"][1]["retryLimit"] = 5;
    root.Exec("UPDATE Detail_DBN_Prompts SET PromptNodeNumber = 9" + Where(1, "NodeMasterID", 1) +
              " AND PromptNumber = 4");
    EXPECT_EQ(Texts(Apply(prompts).problems),
              std::vector<std::string>{
                  "nodes[1]: DBN 1 was changed in the database since the export (it now differs "
                  "from the file in: retryLimit, confirmation.prompts); --force writes the file "
                  "over it"});

    json gone = Exported();
    root.Exec(
        "DELETE FROM Node_DBN WHERE PartID = 1 AND NodeNumber = 2;"
        "DELETE FROM Detail_DBN_Prompts WHERE PartID = 1 AND NodeMasterID = 2;"
        "DELETE FROM Node_General_Pool WHERE PartID = 1 AND NodeTypeID = 15 AND NodeNumber = 2");
    EXPECT_EQ(Texts(Apply(gone).problems),
              std::vector<std::string>{"nodes[2]: DBN 2 was deleted from the database since the "
                                       "export; --force creates it again from the template"});

    ApplyOptions force;
    force.force = true;
    const ApplyResult forced = Apply(document, force);
    ASSERT_TRUE(forced.written);
    EXPECT_EQ(Stored("RetryLimit"), "4");
    EXPECT_EQ(Stored("NodeDescription"), "Staff directory");
    EXPECT_EQ(root.QueryText("SELECT PromptNodeNumber FROM Detail_DBN_Prompts" +
                             Where(1, "NodeMasterID", 1) + " AND PromptNumber = 4"),
              "1");
}

// Name prompts beyond Max Matches are not references, as in the editor's
// save: neither reported missing nor created.
TEST_F(NodeTextTest, NamePromptsBeyondMaxMatchesAreNoReferences) {
    json document = Exported();
    json& confirmation = document["nodes"][1]["confirmation"];
    confirmation["enabled"] = true;
    confirmation["maxMatches"] = 2;
    confirmation["prompts"][1] = {{"type", "MSG"}, {"number", 76}};
    confirmation["prompts"][5] = {{"type", "MSG"}, {"number", 77}};
    ApplyOptions create;
    create.createMissing = true;
    const ApplyResult result = Apply(document, create);
    ASSERT_TRUE(result.written);
    EXPECT_EQ(result.createdReferences, std::vector<std::string>{"MSG 76"});
    EXPECT_TRUE(result.missingReferences.empty());
    EXPECT_EQ(root.QueryInt("SELECT COUNT(*) FROM Node_MSG WHERE PartID = 1 AND NodeNumber = 77"),
              0);
}

// Stored values beyond 16 bits are exported as stored and applied back
// unchanged, with another field changed too; only a changed value is held
// to the field's range.
TEST_F(NodeTextTest, StoredValuesBeyondSixteenBitsComeBackUnchanged) {
    const std::string big = root.OnServer() ? "2147483647" : "9223372036854775807";
    root.Exec("UPDATE Node_DBN SET MaxMatch = 40000, FirstMinDigits = " + big +
              Where(1, "NodeNumber", 1));
    json document = Exported();
    EXPECT_EQ(document["nodes"][1]["confirmation"]["maxMatches"], 40000);
    EXPECT_EQ(Apply(document).nodes[1].outcome, NodeOutcome::Unchanged);
    document["nodes"][1]["retryLimit"] = 2;
    ASSERT_TRUE(Apply(document).written);
    EXPECT_EQ(Stored("MaxMatch || '/' || FirstMinDigits || '/' || RetryLimit"),
              "40000/" + big + "/2");
    document = Exported();
    document["nodes"][1]["confirmation"]["maxMatches"] = 40001;
    EXPECT_EQ(
        Texts(Apply(document).problems),
        std::vector<std::string>{"nodes[1].confirmation.maxMatches: 40001 is outside 1 to 9"});
}

// Another program's change committed while the apply waits for the nodes'
// rows, after the apply first looked at them: compared under the locks,
// refused like a change since the export, or replaced with --force and kept
// as the history's state before.
TEST_F(NodeTextTest, AChangeCommittedWhileTheApplyWaitsIsSeen) {
    for (const bool force : {false, true}) {
        root.Exec("UPDATE Node_DBN SET NodeDescription = 'Staff directory'" +
                  Where(1, "NodeNumber", 1));
        json document = Exported();
        document["nodes"][1]["retryLimit"] = 4;
        TempDataRoot::Writer other(
            root, "UPDATE Node_DBN SET NodeDescription = 'Theirs'" + Where(1, "NodeNumber", 1));
        bool committed = false;
        db.SetWaitHandler([&] {
            if (!committed) {
                committed = true;
                other.Commit();
            }
        });
        ApplyOptions options;
        options.force = force;
        const ApplyResult result = Apply(document, options);
        db.SetWaitHandler({});
        EXPECT_TRUE(committed);
        EXPECT_EQ(result.written, force);
        if (!force) {
            EXPECT_EQ(Texts(result.problems),
                      std::vector<std::string>{
                          "nodes[1]: DBN 1 was changed in the database since the export (it now "
                          "differs from the file in: label, retryLimit); --force writes the file "
                          "over it"});
            EXPECT_EQ(Stored("NodeDescription || RetryLimit"), "Theirs3");
            continue;
        }
        EXPECT_EQ(Stored("NodeDescription || RetryLimit"), "Staff directory4");
        const auto history =
            session::ReadNodeHistory(db, {1, 1, node_type::kDialByName, 1}, std::nullopt);
        ASSERT_EQ(history.size(), 1u);
        EXPECT_EQ(history[0].before->node["NodeDescription"], "Theirs");
    }
}

TEST_F(NodeTextTest, NewNumbersAreCreatedFromTheTemplateAndMissingTargetsOnRequest) {
    json document = Exported();
    json fresh = document["nodes"][1];
    fresh["number"] = 7;
    fresh.erase("stored");
    fresh["label"] = "Night line";
    fresh["greeting"] = {{"type", "MSG"}, {"number", 50}};
    document["nodes"].push_back(fresh);

    ApplyOptions dryRun;
    dryRun.dryRun = true;
    const ApplyResult planned = Apply(document, dryRun);
    ASSERT_EQ(planned.nodes.size(), 4u);
    EXPECT_EQ(planned.nodes[3].outcome, NodeOutcome::Created);
    EXPECT_EQ(planned.missingReferences, std::vector<std::string>{"MSG 50"});
    EXPECT_FALSE(planned.written);
    EXPECT_EQ(root.QueryInt("SELECT COUNT(*) FROM Node_DBN WHERE PartID = 1 AND NodeNumber = 7"),
              0);

    const ApplyResult plain = Apply(document);
    ASSERT_TRUE(plain.written);
    EXPECT_EQ(plain.missingReferences, std::vector<std::string>{"MSG 50"});
    EXPECT_EQ(Stored("NodeDescription", 7), "Night line");
    EXPECT_EQ(root.QueryInt("SELECT COUNT(*) FROM Detail_DBN_Prompts WHERE PartID = 1 AND "
                            "NodeMasterID = 7"),
              9);
    EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 1 AND "
                             "NodeTypeID = 15 AND NodeNumber = 7"),
              "Night line");

    json again = Exported();
    again["nodes"][3]["confirmation"]["exitPrompt"] = {{"type", "MSG"}, {"number", 51}};
    ApplyOptions create;
    create.createMissing = true;
    const ApplyResult created = Apply(again, create);
    EXPECT_EQ(created.createdReferences, (std::vector<std::string>{"MSG 50", "MSG 51"}));
    EXPECT_TRUE(created.missingReferences.empty());
    EXPECT_EQ(
        root.QueryText("SELECT OrvFilename FROM Node_MSG WHERE PartID = 1 AND NodeNumber = 51"),
        "P01M051.wav");
}

// Every node an apply writes gets one history row: `saved` with both states
// for a changed node, `created` with no state before for a new number (its
// copy from the template adds none of its own); unchanged nodes get none.
TEST_F(NodeTextTest, EveryWrittenNodeGetsOneHistoryRow) {
    json document = Exported();
    document["nodes"][1]["label"] = "Staff directory (applied)";
    json fresh = document["nodes"][1];
    fresh["number"] = 7;
    fresh.erase("stored");
    document["nodes"].push_back(fresh);
    ASSERT_TRUE(Apply(document).written);

    const auto history = [&](std::int16_t number) {
        return session::ReadNodeHistory(db, {1, 1, node_type::kDialByName, number}, std::nullopt);
    };
    const auto changed = history(1);
    ASSERT_EQ(changed.size(), 1u);
    EXPECT_EQ(changed[0].kind, "saved");
    ASSERT_TRUE(changed[0].before && changed[0].after);
    EXPECT_EQ(changed[0].before->node["NodeDescription"], "Staff directory");
    EXPECT_EQ(changed[0].after->node["NodeDescription"], "Staff directory (applied)");

    const auto created = history(7);
    ASSERT_EQ(created.size(), 1u);
    EXPECT_EQ(created[0].kind, "created");
    EXPECT_FALSE(created[0].before.has_value());
    ASSERT_TRUE(created[0].after.has_value());
    EXPECT_EQ(created[0].after->node["NodeDescription"], "Staff directory (applied)");

    EXPECT_TRUE(history(2).empty());
    EXPECT_TRUE(history(0).empty());
}

}  // namespace
}  // namespace dbn::testing

namespace dbn::testing {
namespace {

// The form and apply judge every field alike: a number apply accepts is one
// the form's list offers, a label apply accepts is one the form's box holds
// whole, and a search rule refuses on both paths with the same message.
TEST_F(NodeTextTest, FormAndApplyGiveTheSameVerdicts) {
    const std::map<std::string, std::string> lists = {
        {"DirectoryNodeNumber", "cmbDirectory"},   {"FirstMinDigits", "cmbFirstMinDigits"},
        {"FirstMaxDigits", "cmbFirstMaxDigits"},   {"SecondMinDigits", "cmbSecondMinDigits"},
        {"SecondMaxDigits", "cmbSecondMaxDigits"}, {"MaxMatch", "cmbMaxMatches"},
        {"RetryLimit", "cmbRetryLimit"},           {"SelectionTimeout", "cmbSelTimeOut"},
        {"DigitTimeout", "cmbDigitTimeOut"}};
    const std::string shortLabel = "Zoë" + std::string(27, 'x');  // 30 characters, 31 bytes
    const std::string longLabel = shortLabel + "é";
    struct Rule {
        std::string form;  // assignments made in the form
        json edits;        // the same settings in the file
        std::string message;
    };
    const std::vector<Rule> rules = {
        {"cmbFirstMinDigits=6; cmbFirstMaxDigits=5",
         {{"/stages/0/minDigits", 6}, {"/stages/0/maxDigits", 5}},
         nodefields::kMinAboveMax},
        {"cmbFirstMinDigits=5; cmbFirstMaxDigits=5",
         {{"/stages/0/minDigits", 5}, {"/stages/0/maxDigits", 5}},
         ""},
        {"cmbfirstMatch=First Name; cmbsecondMatch=First Name",
         {{"/stages/0/mode", "First Name"}, {"/stages/1/mode", "First Name"}},
         nodefields::kSameMatch},
        {"cmbMethod=Default Last Name; cmbLanguage1=None; cmbLanguage2=None",
         {{"/method", "Default Last Name"},
          {"/languages/first", "None"},
          {"/languages/second", "None"}},
         nodefields::kNoLanguage},
    };
    const json exported = Exported();
    const int node = exported["nodes"][1]["number"].get<int>();
    std::map<std::string, std::set<std::string>> offered;
    std::vector<std::string> formMessages;
    std::vector<bool> labelsKept;
    for (const Rule& rule : rules) {
        Open(1, node, [&](form::GUI& gui) {
            if (offered.empty()) {
                for (const auto& [column, name] : lists) {
                    auto& list = dynamic_cast<form::ListControl&>(*gui.FindControl(name));
                    for (int i = 0; i < list.ListCount(); ++i) {
                        offered[column].insert(list.List(i));
                    }
                }
                for (const std::string& label : {shortLabel, longLabel}) {
                    gui.txtDescription.SetText(label);
                    labelsKept.push_back(gui.txtDescription.Text() == label);
                }
            }
            Set(gui, rule.form);
            services.boxes.clear();
            formMessages.push_back(gui.ValidateBeforeSave() ? "" : services.boxes.at(0).text);
        });
    }
    auto problems = [&](const json& edits) {
        json document = exported;
        for (const auto& [pointer, value] : edits.items()) {
            document["nodes"][1][json::json_pointer(pointer)] = value;
        }
        ApplyOptions options;
        options.dryRun = true;
        return Texts(Apply(document, options).problems);
    };
    for (std::size_t i = 0; i < rules.size(); ++i) {
        const std::vector<std::string> applied = problems(rules[i].edits);
        EXPECT_EQ(formMessages[i], rules[i].message) << rules[i].form;
        EXPECT_EQ(applied.empty() ? "" : applied.front().substr(applied.front().find(": ") + 2),
                  rules[i].message)
            << rules[i].form;
    }
    for (const nodefields::FieldRule& rule : nodefields::Fields()) {
        if (rule.kind != nodefields::FieldKind::Whole) {
            continue;
        }
        for (const int value : {rule.low - 1, rule.low, rule.high, rule.high + 1}) {
            const std::vector<std::string> applied = problems({{rule.pointer, value}});
            const bool refused = std::any_of(applied.begin(), applied.end(), [&](const auto& text) {
                return text.find(rule.path + ": " + std::to_string(value) + " is outside") !=
                       std::string::npos;
            });
            EXPECT_EQ(!refused, offered.at(rule.column).count(std::to_string(value)) > 0)
                << rule.path << " = " << value;
        }
    }
    for (std::size_t i = 0; i < labelsKept.size(); ++i) {
        EXPECT_EQ(problems({{"/label", i == 0 ? shortLabel : longLabel}}).empty(), labelsKept[i])
            << "label " << i;
    }
    EXPECT_EQ(problems({{"/label", longLabel}}),
              std::vector<std::string>{"nodes[1].label: is 31 characters long; at most 30 are "
                                       "allowed"});
    // A longer stored label that the file leaves as it is stays, as in the form.
    root.Exec("UPDATE Node_DBN SET NodeDescription = '" + std::string(40, 'x') +
              "' WHERE ConfigID = 1 AND PartID = 1 AND NodeNumber = " + std::to_string(node));
    json kept = Exported();
    kept["nodes"][1]["retryLimit"] = kept["nodes"][1]["retryLimit"] == 2 ? 3 : 2;
    const ApplyResult result = Apply(kept);
    EXPECT_TRUE(result.problems.empty() && result.written);
}

}  // namespace
}  // namespace dbn::testing
