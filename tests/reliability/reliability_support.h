#pragma once

// Shared set-up of the reliability tests: a data root with the demo database,
// services that record every box, the editor run through ShowNodeEditor with
// the operator's actions while the form shows, and readers of what a save
// left in the file.

#include "fake_services.h"
#include "temp_database.h"

#include "form/controls/operator_input.h"
#include "form/gui.h"
#include "session/editor/business_rules.h"
#include "session/editor/component_registration.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace dbn::testing {

// The form's own session object, which saves and loads for the handlers.
inline Business_Rules& FormRules(form::GUI& gui) {
    return dynamic_cast<Business_Rules&>(*gui.FormBusinessRules());
}

// What one editing session showed.
struct EditorRun {
    bool shown = false;
    bool result = true;
};

class EditorTest : public ::testing::Test {
protected:
    EditorTest() { RegisterEditorComponents(services); }

    // Runs the editor on node (1, partition, node). `operate` runs while the
    // form shows; a form still open afterwards is closed without saving.
    EditorRun Edit(int partition, int node, const std::function<void(form::GUI&)>& operate = {}) {
        EditorRun run;
        services.whileShown = [&](form::GUI& gui) {
            run.shown = true;
            try {
                if (operate) {
                    operate(gui);
                }
            } catch (const std::exception& error) {  // the form would show it as an error box
                ADD_FAILURE() << "the test's actions threw: " << error.what();
            }
            if (gui.IsLoaded()) {
                gui.DiscardChangesAndUnload();
            }
        };
        run.result = Business_Rules(services).ShowNodeEditor(
            1, static_cast<std::int16_t>(partition), static_cast<std::int16_t>(node));
        return run;
    }

    // Every row of the tables a save writes, for before/after comparisons.
    std::string SavedTables() const {
        std::string all;
        for (const std::string table :
             {"Node_DBN", "Detail_DBN_Prompts", "Node_General_Pool", "Node_MSG"}) {
            const std::string row = root.QueryText(
                "SELECT group_concat('quote(' || name || ')', ' || '','' || ') FROM "
                "pragma_table_info('" +
                table + "')");
            all += table + ":" +
                   (row.empty() ? "missing"
                                : root.QueryText("SELECT group_concat(r, char(10)) FROM (SELECT " +
                                                 row + " AS r FROM " + table + " ORDER BY r)")) +
                   "\n";
        }
        return all;
    }

    // A refused save kept the unsaved edit and left the form ready to try again.
    void ExpectEditKept(form::GUI& gui, const std::string& label) const {
        EXPECT_TRUE(gui.cmdApply.Enabled());
        EXPECT_EQ(gui.txtDescription.Text(), label);
        EXPECT_TRUE(gui.Frame1.Enabled());
        EXPECT_FALSE(gui.StatusBar1.Visible());
        EXPECT_EQ(services.busyDepth, 0);
    }

    // Texts of the boxes with a title, joined by " | ".
    std::string BoxTexts(const std::string& title) const {
        std::string texts;
        for (const ShownBox& box : services.boxes) {
            if (box.title == title) {
                texts += (texts.empty() ? "" : " | ") + box.text;
            }
        }
        return texts;
    }

    TempDataRoot root{TempDataRoot::Content::Demo};
    FakeServices services;
};

}  // namespace dbn::testing
