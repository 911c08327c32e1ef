#include "session/editor/read_ahead.h"

#include "core/component_error.h"
#include "core/node_types.h"
#include "session/nodes/stored_values.h"

namespace dbn::session {
namespace {

// Every role of a node row that names a target node.
constexpr const char* kTargetRoles[] = {
    "Greeting",     "ValidMatch",  "Abort",           "Star",    "Pound",
    "Zero",         "FirstPrompt", "SecondPrompt",    "Timeout", "Invalid",
    "BeforePrompt", "AfterPrompt", "ConfirmationExit"};

BatchStep DescriptionRead(std::int16_t config, std::int16_t partition, const StoredRef& ref) {
    return {"Get_Description",
            {CommandArg(config), CommandArg(partition), CommandArg(ref.typeID),
             CommandArg(ref.number)}};
}

}  // namespace

std::vector<BatchStep> TargetDescriptionReads(std::int16_t config, std::int16_t partition,
                                              RowSet& node, RowSet& prompts) {
    std::vector<BatchStep> reads;
    if (node.Eof()) {
        return reads;
    }
    for (const char* role : kTargetRoles) {
        reads.push_back(DescriptionRead(config, partition, ReadRef(node, role)));
    }
    for (; !prompts.Eof(); prompts.MoveNext()) {
        reads.push_back(DescriptionRead(config, partition, ReadRef(prompts, "Prompt")));
    }
    return reads;
}

void ReadNodeAhead(DataBase& db, std::int16_t config, std::int16_t partition, std::int16_t number,
                   std::vector<BatchStep> independent, const DependentReads& dependent) {
    std::vector<BatchStep> first{
        {"Get_DBN_Node",
         {CommandArg(config), CommandArg(partition), CommandArg(number),
          CommandArg(node_type::kDialByName)}},
        {"Get_DBN_PromptsNode", {CommandArg(config), CommandArg(partition), CommandArg(number)}},
        {"Get_Description",
         {CommandArg(config), CommandArg(partition), CommandArg(node_type::kDialByName),
          CommandArg(number)}}};
    first.insert(first.end(), std::make_move_iterator(independent.begin()),
                 std::make_move_iterator(independent.end()));
    std::vector<BatchAnswer> answers = db.ReadAhead(first);
    if (answers.size() != first.size()) {
        return;  // each command reports its own failure when it runs
    }
    std::vector<BatchStep> second;
    try {
        second = TargetDescriptionReads(config, partition, answers[0].rows, answers[1].rows);
        if (dependent) {
            std::vector<BatchAnswer> rest(std::make_move_iterator(answers.begin() + 3),
                                          std::make_move_iterator(answers.end()));
            std::vector<BatchStep> more = dependent(rest);
            second.insert(second.end(), std::make_move_iterator(more.begin()),
                          std::make_move_iterator(more.end()));
        }
    } catch (const ComponentError&) {
        // A stored value that does not read: the load reports it in its place.
        return;
    }
    if (!second.empty()) {
        db.ReadAhead(second);
    }
}

}  // namespace dbn::session
