#pragma once

// Shared set-up of the session tests: a demo database, services that note the
// form's state when it unloads, the editor opened through ShowNodeEditor, and
// a bare form on which single loaders run.

#include "fake_services.h"
#include "temp_database.h"

#include "form/gui.h"
#include "session/business_rules.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace dbn::testing {

class UnloadServices : public FakeServices {
public:
    bool hookedAtUnload = true;
    std::string descriptionAtUnload;

    void EndModal(form::GUI& form) override {
        FakeServices::EndModal(form);
        hookedAtUnload = form.ListViewsHooked();
        descriptionAtUnload = form.txtDescription.Text();
    }
};

// Each row as "key=name/target", or with `cells` as "key=text|cell1|...|cell6".
inline std::string Rows(const form::ListView& list, bool cells = false) {
    std::string text;
    for (int i = 0; i < list.ItemCount(); ++i) {
        const form::ListItem& row = list.ItemAt(i);
        text += (i ? " " : "") + row.Key() + "=";
        text += cells ? row.Text() : row.SubItem(1) + "/" + row.SubItem(2);
        for (int cell = 1; cells && cell <= 6; ++cell) {
            text += "|" + row.SubItem(cell);
        }
    }
    return text;
}

// Each entry as "TEXT(TAG)".
inline std::string Entries(const form::ListControl& list) {
    std::string text;
    for (int i = 0; i < list.ListCount(); ++i) {
        text += (i ? " " : "") + list.List(i) + "(" + std::to_string(list.ItemData(i)) + ")";
    }
    return text;
}

class SessionTest : public ::testing::Test {
protected:
    // Opens the editor on a node of configuration 1; `look` runs while the
    // form shows, after which the form is closed without saving.
    bool Open(int partition, int node, const std::function<void(form::GUI&)>& look = {}) {
        services.whileShown = [&](form::GUI& gui) {
            if (look) {
                look(gui);
            }
            gui.cmdApply.SetEnabled(false);
            gui.Unload();
        };
        Business_Rules editor(services);
        return editor.ShowNodeEditor(1, static_cast<std::int16_t>(partition),
                                     static_cast<std::int16_t>(node));
    }

    // The selected index of a list after loading, for each stored change.
    void ExpectSelections(int partition, int node,
                          std::initializer_list<std::tuple<const char*, const char*, int>> cases) {
        for (const auto& [assignments, listName, index] : cases) {
            SetNode(partition, node, assignments);
            Open(partition, node, [&](form::GUI& gui) {
                auto* list = dynamic_cast<form::ListControl*>(gui.FindControl(listName));
                ASSERT_NE(list, nullptr);
                EXPECT_EQ(list->ListIndex(), index) << assignments << " / " << listName;
            });
        }
        EXPECT_TRUE(services.boxes.empty());
    }

    void SetNode(int partition, int node, const std::string& assignments) {
        root.Exec("UPDATE Node_DBN SET " + assignments + " WHERE ConfigID = 1 AND PartID = " +
                  std::to_string(partition) + " AND NodeNumber = " + std::to_string(node));
    }

    TempDataRoot root{TempDataRoot::Content::Demo};
    UnloadServices services;
};

// A form with its collections and keys and the session object working on it.
struct BareForm {
    BareForm(form::FormServices& services, int partition) : gui(services), rules(services, gui) {
        gui.CreateCollections();
        gui.SetConfigID(1);
        gui.SetPartitionID(static_cast<std::int16_t>(partition));
        rules.LoadNodeName();
    }
    form::GUI gui;
    Business_Rules rules;
};

}  // namespace dbn::testing
