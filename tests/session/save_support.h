#pragma once

// Shared set-up of the saving and referenced-node tests: a demo database, an
// editor opened on one node of configuration 1, and readers for what it wrote.

#include "fake_services.h"
#include "temp_database.h"

#include "core/component_factory.h"
#include "form/gui.h"
#include "session/business_rules.h"
#include "session/confirmation_dialog.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace dbn::testing {

// Also notes the title of every confirmation and lets a test look at the form then.
class SavingServices : public FakeServices {
public:
    std::vector<std::string> confirmTitles;
    std::function<void()> onConfirm = [] {};

    long Confirm(const std::string& text, const std::string& title) override {
        confirmTitles.push_back(title);
        onConfirm();
        return FakeServices::Confirm(text, title);
    }
};

class SavingTest : public ::testing::Test {
protected:
    using Actions = std::function<void(form::GUI&, Business_Rules&)>;

    SavingTest() {
        RegisterComponent(kConfirmationDialogClass,
                          [this] { return std::make_unique<ConfirmationDialog>(services); });
    }

    // Opens a node and runs the operator's actions while it shows; a form
    // still open afterwards is closed without saving.
    void Edit(int partition, int node, const Actions& actions) {
        services.whileShown = [&](form::GUI& gui) {
            auto* rules = dynamic_cast<Business_Rules*>(gui.FormBusinessRules());
            ASSERT_NE(rules, nullptr);
            actions(gui, *rules);
            if (gui.IsLoaded()) {
                gui.cmdApply.SetEnabled(false);
                gui.Unload();
            }
        };
        const int shownBefore = services.modalShows;
        Business_Rules(services).ShowNodeEditor(1, static_cast<std::int16_t>(partition),
                                                static_cast<std::int16_t>(node));
        ASSERT_EQ(services.modalShows, shownBefore + 1) << "the node was not shown";
    }

    static std::string Where(int partition, const std::string& numberColumn, int number) {
        return " WHERE ConfigID = 1 AND PartID = " + std::to_string(partition) + " AND " +
               numberColumn + " = " + std::to_string(number);
    }

    std::string NodeColumn(const std::string& column, int partition, int node) {
        return root.QueryText("SELECT " + column + " FROM Node_DBN" +
                              Where(partition, "NodeNumber", node));
    }

    // The node's prompt rows as "number:CODE typeID/number" in prompt order.
    std::string PromptRows(int partition, int node) {
        return root.QueryText(
            "SELECT group_concat(PromptNumber || ':' || PromptNodeType || ' ' || PromptNodeTypeID "
            "|| '/' || PromptNodeNumber, ',') FROM (SELECT * FROM Detail_DBN_Prompts" +
            Where(partition, "NodeMasterID", node) + " ORDER BY PromptNumber)");
    }

    // Rows of a table, every column quoted and joined by ",", rows sorted.
    std::string Rows(const std::string& table, const std::string& where = "") {
        const std::string row = root.QueryText(
            "SELECT group_concat('quote(' || name || ')', ' || '','' || ') FROM "
            "pragma_table_info('" +
            table + "')");
        return root.QueryText("SELECT group_concat(r, char(10)) FROM (SELECT " + row +
                              " AS r FROM " + table + where + " ORDER BY r)");
    }

    long long Count(const std::string& table, const std::string& where) {
        return root.QueryInt("SELECT count(*) FROM " + table + where);
    }

    bool PoolHas(int partition, int typeID, int number) {
        return Count("Node_General_Pool", Where(partition, "NodeNumber", number) +
                                              " AND NodeTypeID = " + std::to_string(typeID)) > 0;
    }

    // A pool row, so that the referenced-node check finds the node.
    void AddPoolRow(int partition, int typeID, int number, const std::string& code) {
        root.Exec("INSERT INTO Node_General_Pool VALUES (1, " + std::to_string(partition) + ", " +
                  std::to_string(typeID) + ", " + std::to_string(number) + ", '" + code +
                  "', 'Test node', '2001-01-01 00:00:00')");
    }

    TempDataRoot root{TempDataRoot::Content::Demo};
    SavingServices services;
};

// Writes the target cells of a row: shown text, code, type ID and number.
inline void SetTarget(form::ListView& list, int position, const std::string& shown,
                      const std::string& code, const std::string& typeID,
                      const std::string& number) {
    form::ListItem& row = list.ItemAt(position);
    row.SetSubItem(2, shown);
    row.SetSubItem(4, code);
    row.SetSubItem(5, typeID);
    row.SetSubItem(6, number);
}

// Appends a row pointing at message node number.
inline void AddMessageRow(form::ListView& list, const std::string& number) {
    const std::string position = std::to_string(list.ItemCount() + 1);
    list.AddItem(position + "a", position);
    SetTarget(list, list.ItemCount() - 1, "MSG " + number, "MSG", "0", number);
}

// Points a picker pair at a node: the type by its code, then the number.
inline void PickTarget(form::ListControl& node, form::ListControl& number, const std::string& code,
                       const std::string& value) {
    node.SetText(code);
    number.SetText(value);
}

}  // namespace dbn::testing
