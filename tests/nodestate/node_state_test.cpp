// The JSON form of a node's stored state and the field-by-field comparison.
#include "nodestate/node_state.h"
#include "nodestate/state_diff.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace dbn::nodestate {
namespace {

NodeState SampleState() {
    NodeState state;
    state.node = Json::parse(R"({"ConfigID":1,"PartID":2,"NodeTypeID":15,"NodeNumber":5,
        "NodeType":"DBN","NodeDescription":"Sales","MaxMatch":5,"DigitTimeout":2.5,
        "AbortNodeType":"MSG","AbortNodeNumber":3,"AbortNodeTypeID":0,
        "StarNodeType":"NOOP","StarNodeNumber":0,"StarNodeTypeID":814,"Reserved1":null})");
    for (int prompt = 1; prompt <= 2; ++prompt) {
        state.details.push_back(Json{{"ConfigID", 1},
                                     {"PartID", 2},
                                     {"PromptNumber", prompt},
                                     {"PromptNodeTypeID", 0},
                                     {"PromptNodeNumber", 1},
                                     {"NodeMasterID", 5},
                                     {"PromptNodeType", "MSG"}});
    }
    state.pool = Json::parse(R"({"ConfigID":1,"PartID":2,"NodeTypeID":15,"NodeNumber":5,
        "NodeType":"DBN","NodeDescription":"Sales","DateModified":"2026-01-02 03:04:05"})");
    return state;
}

TEST(NodeStateJson, RoundTripsValuesExactly) {
    const std::vector<Json> values{
        nullptr, "",  "Müller – Straße ☎",     0, -1, 32767, 9007199254740993LL,
        2.5,     "5", "line\nbreak \"quoted\""};
    for (const Json& value : values) {
        NodeState state = SampleState();
        state.node["NodeDescription"] = value;
        const NodeState back = FromJson(ToJson(state));
        EXPECT_EQ(back, state) << value.dump();
        const Json& read = back.node["NodeDescription"];
        EXPECT_EQ(read.dump(), value.dump());
        EXPECT_EQ(read.is_number_float(), value.is_number_float()) << value.dump();
        EXPECT_EQ(read.is_string(), value.is_string()) << value.dump();
    }
}

// The text is the JSON library's own dump of the state, byte for byte, so
// that states written before compare equal with states written now.
TEST(NodeStateJson, WritesWhatTheLibraryWrites) {
    const std::vector<Json> values{nullptr,
                                   "",
                                   "plain text",
                                   "tab\there",
                                   "back\\slash",
                                   "\x7f del",
                                   "\x01 control",
                                   "quote \"",
                                   "Müller ☎",
                                   "bad \xff byte",
                                   -9007199254740993LL,
                                   18446744073709551615ULL,
                                   2.0,
                                   0.1,
                                   true,
                                   Json::object(),
                                   Json::array({1, "a", nullptr})};
    for (const Json& value : values) {
        NodeState state = SampleState();
        state.node["NodeDescription"] = value;
        state.details.front()["PromptNodeType"] = value;
        const Json whole{{"node", state.node}, {"details", state.details}, {"pool", state.pool}};
        EXPECT_EQ(ToJson(state), whole.dump(-1, ' ', false, Json::error_handler_t::replace))
            << value.dump(-1, ' ', false, Json::error_handler_t::replace);
    }
    NodeState noPool = SampleState();
    noPool.pool = nullptr;
    noPool.details.clear();
    EXPECT_EQ(ToJson(noPool),
              Json({{"node", noPool.node}, {"details", Json::array()}, {"pool", nullptr}}).dump());
}

TEST(NodeStateJson, KeepsColumnOrderAndAbsentStates) {
    const NodeState state = SampleState();
    const std::string text = ToJson(state);
    EXPECT_LT(text.find("\"NodeType\""), text.find("\"NodeDescription\""));
    EXPECT_LT(text.find("\"NodeDescription\""), text.find("\"MaxMatch\""));
    EXPECT_EQ(ToStoredJson(std::nullopt), "");
    EXPECT_FALSE(FromStoredJson("").has_value());
    EXPECT_EQ(FromStoredJson(ToStoredJson(state)), state);
    NodeState noPool = state;
    noPool.pool = nullptr;
    EXPECT_EQ(FromJson(ToJson(noPool)), noPool);
}

TEST(NodeStateJson, RefusesWhatIsNoState) {
    for (const char* text : {"", "{", "[]", R"({"node":1,"details":[]})", R"({"node":{}})",
                             R"({"node":{},"details":[1]})"}) {
        EXPECT_THROW(FromJson(text), std::invalid_argument) << text;
    }
}

TEST(StateDiff, NamesEveryChangedColumnWithStoredValues) {
    const NodeState before = SampleState();
    struct Case {
        const char* column;
        Json value;
    };
    const std::vector<Case> cases{{"NodeDescription", "Sales desk"},
                                  {"MaxMatch", 3},
                                  {"DigitTimeout", 3.0},
                                  {"Reserved1", 0},
                                  {"NodeDescription", nullptr},
                                  {"NodeDescription", ""}};
    for (const Case& c : cases) {
        NodeState after = before;
        after.node[c.column] = c.value;
        const std::vector<FieldChange> changes = Diff(before, after);
        ASSERT_EQ(changes.size(), 1U) << c.column;
        EXPECT_EQ(changes[0], (FieldChange{c.column, before.node[c.column], c.value}));
    }
    EXPECT_TRUE(Diff(before, before).empty());
}

TEST(StateDiff, IgnoresKeysAndThePoolTime) {
    const NodeState before = SampleState();
    NodeState after = before;
    after.node["NodeNumber"] = 6;
    after.pool["DateModified"] = "2027-01-01 00:00:00";
    after.pool["NodeDescription"] = "other";  // the node row's column says it
    EXPECT_TRUE(Diff(before, after).empty());
}

TEST(StateDiff, ComparesPromptRowsByNumber) {
    const NodeState before = SampleState();
    NodeState changed = before;
    changed.details[1]["PromptNodeNumber"] = 12;
    NodeState longer = before;
    longer.details.push_back(before.details[0]);
    longer.details.back()["PromptNumber"] = 3;
    NodeState shorter = before;
    shorter.details.pop_back();

    auto only = [](const std::vector<FieldChange>& changes) {
        EXPECT_EQ(changes.size(), 1U);
        return changes.empty() ? FieldChange{} : changes[0];
    };
    const FieldChange second = only(Diff(before, changed));
    EXPECT_EQ(second.field, "Prompt 2");
    EXPECT_EQ(ValueText(second.before), "MSG 1");
    EXPECT_EQ(ValueText(second.after), "MSG 12");
    EXPECT_FALSE(second.after.contains("NodeMasterID"));
    const FieldChange added = only(Diff(before, longer));
    EXPECT_EQ(added.field, "Prompt 3");
    EXPECT_TRUE(added.before.is_null());
    const FieldChange removed = only(Diff(before, shorter));
    EXPECT_EQ(removed.field, "Prompt 2");
    EXPECT_TRUE(removed.after.is_null());
}

TEST(StateDiff, CreatedNodeShowsItsContentsAgainstNothing) {
    NodeState message;
    message.pool = Json{{"ConfigID", 1}, {"NodeType", "MSG"}, {"NodeDescription", "Welcome"}};
    const std::vector<FieldChange> changes = Diff(std::nullopt, message);
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_EQ(changes[0], (FieldChange{"NodeType", nullptr, "MSG"}));
    EXPECT_EQ(changes[1], (FieldChange{"NodeDescription", nullptr, "Welcome"}));
}

TEST(StateDiff, LinesForPeople) {
    const NodeState before = SampleState();
    NodeState after = before;
    after.node["NodeDescription"] = "Sales desk";
    after.node["MaxMatch"] = 3;
    after.node["AbortNodeNumber"] = 12;
    after.node["StarNodeType"] = "MSG";
    after.node["StarNodeNumber"] = 4;
    after.node["StarNodeTypeID"] = 0;
    after.node["Reserved1"] = 0;
    after.details[0]["PromptNodeNumber"] = 7;
    const std::vector<std::string> lines = ChangeLines(Diff(before, after), before, after);
    const std::vector<std::string> expected{
        R"(NodeDescription: "Sales" -> "Sales desk")",
        "MaxMatch: 5 -> 3",
        "Abort: MSG 3 -> MSG 12",
        "*: NOOP 0 -> MSG 4",
        "Reserved1: Null -> 0",
        "Prompt 1: MSG 1 -> MSG 7",
    };
    EXPECT_EQ(lines, expected);
}

}  // namespace
}  // namespace dbn::nodestate
