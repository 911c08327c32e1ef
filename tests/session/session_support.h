#pragma once

// Shared set-up of the session tests: a demo database, services that note the
// form at unload and at each confirmation, the editor opened through
// ShowNodeEditor, readers for what a save wrote, and a bare form for loaders.

#include "fake_services.h"
#include "list_text.h"
#include "temp_database.h"

#include "form/gui.h"
#include "session/editor/business_rules.h"
#include "session/editor/component_registration.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace dbn::testing {

class SessionServices : public FakeServices {
public:
    bool hookedAtUnload = true;
    std::string descriptionAtUnload;
    std::vector<std::string> confirmTitles;
    std::function<void()> onConfirm = [] {};
    std::vector<std::string> boxDetails;

    void SetNextBoxDetails(const std::string& details) override { boxDetails.push_back(details); }

    void EndModal(form::GUI& form) override {
        FakeServices::EndModal(form);
        hookedAtUnload = form.ListViewsHooked();
        descriptionAtUnload = form.txtDescription.Text();
    }
    long Confirm(const std::string& text, const std::string& title) override {
        confirmTitles.push_back(title);
        onConfirm();
        return FakeServices::Confirm(text, title);
    }
};

// Each entry as "TEXT(TAG)".
inline std::string Entries(const form::ListControl& list) {
    std::string text;
    for (int i = 0; i < list.ListCount(); ++i) {
        text += (i ? " " : "") + list.List(i) + "(" + std::to_string(list.ItemData(i)) + ")";
    }
    return text;
}

// Writes lists and text fields by name, in order, as code does (a list selects
// the entry of that text, raising its events): "name=text; name=text; ...".
inline void Set(form::GUI& gui, const std::string& assignments) {
    std::size_t start = 0;
    while (start < assignments.size()) {
        const std::size_t end = std::min(assignments.find("; ", start), assignments.size());
        const std::string item = assignments.substr(start, end - start);
        const std::size_t equals = item.find('=');
        form::Control* control = gui.FindControl(item.substr(0, equals));
        if (auto* list = dynamic_cast<form::ListControl*>(control)) {
            list->SetText(item.substr(equals + 1));
        } else {
            dynamic_cast<form::TextField&>(*control).SetText(item.substr(equals + 1));
        }
        start = end + 2;
    }
}

// The node shown with what a save relies on, and every control's state and
// content, as one text: two forms that give the same text look and save alike.
inline std::string FormState(form::GUI& gui) {
    std::string text = gui.Title() + " stored " +
                       std::to_string(std::hash<std::string>{}(gui.StoredState.value_or(""))) +
                       " aside " + std::to_string(gui.AsideNameRows().size()) + "\n";
    for (const form::Control* control : gui.Controls()) {
        text += control->Name() + (control->Visible() ? " shown" : " hidden") +
                (control->Enabled() ? "" : " disabled");
        if (const auto* list = dynamic_cast<const form::ListControl*>(control)) {
            text += " [" + std::to_string(list->ListIndex()) + "] " + list->Text() + " of " +
                    std::to_string(list->ListCount());
        } else if (const auto* field = dynamic_cast<const form::TextField*>(control)) {
            text += " " + field->Text();
        } else if (const auto* label = dynamic_cast<const form::Label*>(control)) {
            text += " " + label->Caption();
        } else if (const auto* view = dynamic_cast<const form::ListView*>(control)) {
            for (const std::string& row : AllCells(*view)) {
                text += " " + row;
            }
        }
        text += "\n";
    }
    return text;
}

inline Business_Rules& Rules(form::GUI& gui) {
    return dynamic_cast<Business_Rules&>(*gui.FormBusinessRules());
}

class SessionTest : public ::testing::Test {
protected:
    SessionTest() { RegisterEditorComponents(services); }

    // Opens a node of configuration 1; `look` runs while the form shows (not
    // showing it is a failure then), after which a form still open is closed
    // without saving.
    void Open(int partition, int node, const std::function<void(form::GUI&)>& look = {}) {
        bool shown = false;
        services.whileShown = [&](form::GUI& gui) {
            shown = true;
            if (look) {
                look(gui);
            }
            if (gui.IsLoaded()) {
                gui.DiscardChangesAndUnload();
            }
        };
        EXPECT_FALSE(Business_Rules(services).ShowNodeEditor(
            1, static_cast<std::int16_t>(partition), static_cast<std::int16_t>(node)));
        EXPECT_TRUE(shown || !look) << "node " << node << " was not shown";
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
        // Fallbacks are told in notices, never in an error.
        for (const ShownBox& box : services.boxes) {
            EXPECT_EQ(box.title, "Information") << box.text;
        }
        services.boxes.clear();
    }

    void SetNode(int partition, int node, const std::string& assignments) {
        root.Exec("UPDATE Node_DBN SET " + assignments + Where(partition, "NodeNumber", node));
    }

    static std::string Where(int partition, const std::string& numberColumn, int number) {
        return " WHERE ConfigID = 1 AND PartID = " + std::to_string(partition) + " AND " +
               numberColumn + " = " + std::to_string(number);
    }

    // An expression of columns (joined by ||, which both engines read as
    // text after the leading empty text).
    std::string NodeColumn(const std::string& column, int partition, int node) {
        return root.QueryText("SELECT '' || " + column + " FROM Node_DBN" +
                              Where(partition, "NodeNumber", node));
    }

    // Rows of a table, every column quoted and joined by ",", rows sorted.
    std::string TableRows(const std::string& table, const std::string& where = "") {
        if (root.OnServer()) {
            const std::string row = root.QueryText(
                "SELECT string_agg(CASE WHEN data_type = 'text' THEN 'quote_nullable(' || "
                "column_name || ')' ELSE 'coalesce(' || column_name || '::text, ''NULL'')' END, "
                "' || '','' || ' ORDER BY ordinal_position) FROM information_schema.columns "
                "WHERE table_schema = current_schema() AND table_name = lower('" +
                table + "')");
            return root.QueryText("SELECT string_agg(r, chr(10) ORDER BY r) FROM (SELECT " + row +
                                  " AS r FROM " + table + where + ") AS rows");
        }
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

    TempDataRoot root{TempDataRoot::Content::Demo};
    SessionServices services;
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
