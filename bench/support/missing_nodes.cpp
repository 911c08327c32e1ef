#include "support/missing_nodes.h"

#include "form/list_rows.h"

#include <stdexcept>
#include <string>

namespace dbn::bench {

const std::vector<MissingNode>& MissingNodes() {
    static const std::vector<MissingNode> nodes = {
        {"MSG", 0, 50, {"Node_MSG"}},
        {"LIST", 8, 15, {"Node_LIST", "Detail_LIST"}},
        {"MSG", 0, 51, {"Node_MSG"}},
        {"VOX", 7, 8, {"Node_VOX", "Detail_VOX_Prompts", "Detail_VOX_Action"}},
        {"XFER", 4, 40, {"Node_XFER"}},
        {"MSG", 0, 52, {"Node_MSG"}},
        {"CMD", 1, 15, {"Node_CMD", "Detail_CMD"}},
        {"TIME", 2, 15, {"Node_TIME", "Detail_TIME"}},
        {"DTMF", 6, 25, {"Node_DTMF", "Detail_DTMF_Prompts", "Detail_DTMF_Action"}},
        {"AUTO", 9, 25, {"Node_AUTO", "Detail_AUTO_Prompts", "Detail_AUTO_Action"}},
    };
    return nodes;
}

// Points the six pickers and the first four action rows at the missing nodes.
void PointAtMissingNodes(form::GUI& gui) {
    const std::vector<MissingNode>& nodes = MissingNodes();
    const std::vector<std::pair<form::ListControl*, form::ListControl*>> pickers = {
        {&gui.cmbGreetingNode, &gui.cmbGreetingNumber},
        {&gui.cmbFirstMatchPrompt, &gui.cmbFirstMatchPromptNumber},
        {&gui.cmbSecondMatchPrompt, &gui.cmbSecondMatchPromptNumber},
        {&gui.cmbTimeoutNode, &gui.cmbTimeoutNumber},
        {&gui.cmbInvalidNode, &gui.cmbInvalidNumber},
        {&gui.cmbExitPromptNode, &gui.cmbExitPromptNumber}};
    std::size_t next = 0;
    for (const auto& [node, number] : pickers) {
        node->SetText(nodes[next].code);
        number->SetText(std::to_string(nodes[next].number));
        if (number->Text() != std::to_string(nodes[next].number)) {
            throw std::runtime_error(std::string("cannot pick ") + nodes[next].code);
        }
        ++next;
    }
    for (int row = 0; next < nodes.size(); ++row, ++next) {
        const MissingNode& target = nodes[next];
        form::ListItem& item = gui.LVActions.ItemAt(row);
        item.SetSubItem(form::list_rows::kCommandNode,
                        std::string(target.code) + " " + std::to_string(target.number));
        item.SetSubItem(form::list_rows::kNodeName, target.code);
        item.SetSubItem(form::list_rows::kNodeTypeID, std::to_string(target.typeID));
        item.SetSubItem(form::list_rows::kNodeNumber, std::to_string(target.number));
    }
}

// Deletes the nodes the last save created, so that the next one creates
// them again.
void RemoveCreatedNodes(const BenchDataRoot& root, std::int16_t partition) {
    std::string sql = "BEGIN;";
    const std::string where = " WHERE ConfigID = 1 AND PartID = " + std::to_string(partition);
    for (const MissingNode& node : MissingNodes()) {
        const std::string number = std::to_string(node.number);
        for (const std::string table : node.tables) {
            const char* key = table.starts_with("Detail_") ? "NodeMasterID" : "NodeNumber";
            sql += "DELETE FROM " + table + where + " AND " + key + " = " + number + ";";
        }
        sql += "DELETE FROM Node_General_Pool" + where +
               " AND NodeTypeID = " + std::to_string(node.typeID) + " AND NodeNumber = " + number +
               ";";
    }
    root.Exec(sql + "COMMIT;");
}

long CreatedNodeCount(const BenchDataRoot& root, std::int16_t partition) {
    long count = 0;
    for (const MissingNode& node : MissingNodes()) {
        count += root.QueryNumber(
            "SELECT count(*) FROM Node_General_Pool WHERE ConfigID = 1 AND "
            "PartID = " +
            std::to_string(partition) + " AND NodeTypeID = " + std::to_string(node.typeID) +
            " AND NodeNumber = " + std::to_string(node.number));
    }
    return count;
}

}  // namespace dbn::bench
