#include "session/editor/saved_fields.h"

#include "core/node_types.h"
#include "database/schema_model.h"
#include "form/gui.h"
#include "nodefields/node_fields.h"
#include "session/nodes/stored_values.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>

namespace dbn::session {

namespace {

using Values = std::vector<std::string>;
using Controls = std::vector<const form::Control*>;
using List = form::ListControl form::GUI::*;

constexpr int kFixedConfirmRows = 2;
const std::string kDirectoryTypeID = std::to_string(node_type::kDirectory);
const std::string kNoNumberTypeID = std::to_string(node_type::kNoNumber);

// One stored field: the columns it fills, what the form shows for it (as a
// save writes it), and the controls the operator changes it with. A field
// written from list rows has no such control: it is changed when its rows
// differ from the load's.
struct Field {
    Values columns;
    std::function<Values(form::GUI&)> shown;
    std::function<Controls(form::GUI&)> controls = [](form::GUI&) { return Controls{}; };
    bool prompts = false;
    int part = 1;  // the statement that writes it
};

const std::string* StoredValue(const form::GUI& gui, const std::string& column) {
    const auto found = gui.Loaded.values.find(LowerCase(column));
    return found == gui.Loaded.values.end() ? nullptr : &found->second;
}

// A list's tag; a list that shows nothing (the stored value lies outside
// it) gives the stored value.
Values ListTag(const form::GUI& gui, const form::ListControl& list, const std::string& column) {
    const std::string* stored = StoredValue(gui, column);
    return {list.ListIndex() < 0 && stored != nullptr ? *stored : SelectedTagText(list)};
}

// The same for a list whose entry text is the value.
Values ListText(const form::GUI& gui, const form::ListControl& list, const std::string& column) {
    const std::string* stored = StoredValue(gui, column);
    return {list.Text().empty() && stored != nullptr ? *stored : list.Text()};
}

Values RefValues(const StoredNodeRef& ref) {
    return {ref.type, ref.number, ref.typeID};
}

Values RefColumns(const std::string& role) {
    return {role + "NodeType", role + "NodeNumber", role + "NodeTypeID"};
}

Field TagSetting(const std::string& column, List list) {
    return {{column},
            [=](form::GUI& gui) { return ListTag(gui, gui.*list, column); },
            [=](form::GUI& gui) { return Controls{&(gui.*list)}; }};
}

Field TextSetting(const std::string& column, List list) {
    return {{column},
            [=](form::GUI& gui) { return ListText(gui, gui.*list, column); },
            [=](form::GUI& gui) { return Controls{&(gui.*list)}; }};
}

Field Pair(const std::string& role, List node, List number) {
    return {RefColumns(role),
            [=](form::GUI& gui) { return RefValues(PairReference(gui.*node, gui.*number)); },
            [=](form::GUI& gui) {
                return Controls{&(gui.*node), &(gui.*number)};
            }};
}

Field ActionRow(const std::string& role, int row) {
    return {RefColumns(role),
            [=](form::GUI& gui) { return RefValues(RowReference(gui.LVActions, row)); }};
}

Field Description(const std::string& column) {
    return {{column},
            [](form::GUI& gui) { return Values{gui.txtDescription.Text()}; },
            [](form::GUI& gui) { return Controls{&gui.txtDescription}; }};
}

// Before and after the names: the first two confirmation rows, default
// prompts when there are none. The field stands for the name prompts too.
Field Prompts() {
    Values columns = RefColumns("BeforePrompt");
    for (std::string& column : RefColumns("AfterPrompt")) {
        columns.push_back(std::move(column));
    }
    Field field{
        columns, [](form::GUI& gui) {
            const form::ListView& rows = ListedPrompts(gui);
            const bool listed = rows.ItemCount() >= kFixedConfirmRows;
            Values values = RefValues(listed ? RowReference(rows, 0) : kDefaultPrompt);
            for (std::string& value : RefValues(listed ? RowReference(rows, 1) : kDefaultPrompt)) {
                values.push_back(std::move(value));
            }
            return values;
        }};
    field.prompts = true;
    return field;
}

// The list that shows a setting, or the type and number lists of a target
// picked by a pair of lists, by the field's column (a target's role).
struct ShownBy {
    const char* column;
    List list;
    List number = nullptr;
};

const ShownBy* ShownByOf(const std::string& column) {
    using G = form::GUI;
    static const ShownBy shown[] = {
        {"Method", &G::cmbMethod},
        {"DirectoryNodeNumber", &G::cmbDirectory},
        {"FirstLanguage", &G::cmbLanguage1},
        {"SecondLanguage", &G::cmbLanguage2},
        {"Greeting", &G::cmbGreetingNode, &G::cmbGreetingNumber},
        {"FirstMode", &G::cmbfirstMatch},
        {"FirstMinDigits", &G::cmbFirstMinDigits},
        {"FirstMaxDigits", &G::cmbFirstMaxDigits},
        {"FirstPrompt", &G::cmbFirstMatchPrompt, &G::cmbFirstMatchPromptNumber},
        {"SecondMode", &G::cmbsecondMatch},
        {"SecondMinDigits", &G::cmbSecondMinDigits},
        {"SecondMaxDigits", &G::cmbSecondMaxDigits},
        {"SecondPrompt", &G::cmbSecondMatchPrompt, &G::cmbSecondMatchPromptNumber},
        {"Timeout", &G::cmbTimeoutNode, &G::cmbTimeoutNumber},
        {"Invalid", &G::cmbInvalidNode, &G::cmbInvalidNumber},
        {"DigitTimeout", &G::cmbDigitTimeOut},
        {"SelectionTimeout", &G::cmbSelTimeOut},
        {"RetryLimit", &G::cmbRetryLimit},
        {"Confirm", &G::cmbConfirmation},
        {"MaxMatch", &G::cmbMaxMatches},
        {"PlayName", &G::cmbPlayName},
        {"ConfirmationExit", &G::cmbExitPromptNode, &G::cmbExitPromptNumber},
    };
    for (const ShownBy& entry : shown) {
        if (column == entry.column) {
            return &entry;
        }
    }
    return nullptr;
}

List ListOf(const std::string& column) {
    const ShownBy* shown = ShownByOf(column);
    if (shown == nullptr) {
        throw std::logic_error("no list shows the field " + column);
    }
    return shown->list;
}

// A field as the form shows it, from the node's table of fields; nothing
// for the targets written from the confirmation rows (the prompts' field).
std::optional<Field> FieldOf(const nodefields::FieldRule& rule, int& actionRow) {
    using nodefields::FieldKind;
    switch (rule.kind) {
        case FieldKind::Text:
            return Description(rule.column);
        case FieldKind::Named:
        case FieldKind::Flag:
            return TagSetting(rule.column, ListOf(rule.column));
        case FieldKind::Whole:
            return TextSetting(rule.column, ListOf(rule.column));
        case FieldKind::Prompts:
            return Prompts();
        case FieldKind::Target:
            break;
    }
    if (rule.role == nodefields::TargetRole::Instruction && rule.pointer.starts_with("/actions/")) {
        return ActionRow(rule.column, actionRow++);
    }
    if (const ShownBy* shown = ShownByOf(rule.column); shown != nullptr && shown->number) {
        return Pair(rule.column, shown->list, shown->number);
    }
    return std::nullopt;
}

// Every stored field of the node's table of fields, in the order of the two
// statements that write the node's row: the schema's column order of
// Node_DBN, the second statement from the timeout target on.
std::vector<Field> MakeFields() {
    const SchemaTable& table = *FindSchemaTable("Node_DBN");
    auto position = [&](const std::string& column) {
        const auto at = std::find_if(table.columns.begin(), table.columns.end(),
                                     [&](const SchemaColumn& c) { return c.name == column; });
        return at - table.columns.begin();
    };
    std::vector<Field> fields;
    int actionRow = 0;
    for (const nodefields::FieldRule& rule : nodefields::Fields()) {
        if (std::optional<Field> field = FieldOf(rule, actionRow)) {
            fields.push_back(std::move(*field));
        }
    }
    std::stable_sort(fields.begin(), fields.end(), [&](const Field& a, const Field& b) {
        return position(a.columns.front()) < position(b.columns.front());
    });
    const auto secondPart = position("TimeoutNodeType");
    for (Field& field : fields) {
        field.part = position(field.columns.front()) < secondPart ? 1 : 2;
    }
    return fields;
}

const std::vector<Field>& Fields() {
    static const std::vector<Field> fields = MakeFields();
    return fields;
}

std::string Joined(const Values& values, char separator) {
    std::string text;
    for (const std::string& value : values) {
        text += value;
        text += separator;
    }
    return text;
}

// How a field looks in the form. The prompts look as every row the save
// reads (the list's or those set aside in LVTemp, then the names set aside
// beyond them), so that rows put in by switching the section on differ from
// an empty list even where both would store message node 1.
std::string Look(form::GUI& gui, const Field& field) {
    if (!field.prompts) {
        return Joined(field.shown(gui), '\x1f');
    }
    const form::ListView& rows = ListedPrompts(gui);
    std::string look;
    for (int position = 0; position < rows.ItemCount(); ++position) {
        look += Joined(RefValues(RowReference(rows, position)), '\x1f') + '\x1e';
    }
    look += '\x1d';
    for (const form::list_rows::RowCells& aside : gui.AsideNameRows()) {
        look += Joined({aside.nodeName, aside.nodeNumber, aside.typeId}, '\x1f') + '\x1e';
    }
    return look;
}

bool Changed(form::GUI& gui, const Field& field) {
    if (!gui.Loaded.fieldsNoted) {
        return true;
    }
    for (const form::Control* control : field.controls(gui)) {
        if (control->ChangedByOperator()) {
            return true;
        }
    }
    const auto noted = gui.Loaded.shownFields.find(field.columns.front());
    return noted == gui.Loaded.shownFields.end() || Look(gui, field) != noted->second;
}

// The stored values of a field; none when one is unknown.
std::optional<Values> StoredValues(form::GUI& gui, const Field& field) {
    Values values;
    for (const std::string& column : field.columns) {
        const std::string* stored = StoredValue(gui, column);
        if (stored == nullptr) {
            return std::nullopt;
        }
        values.push_back(*stored);
    }
    return values;
}

}  // namespace

const form::ListView& ListedPrompts(form::GUI& gui) {
    return SelectedTagText(gui.cmbConfirmation) == "1" ? gui.LVConfirm : gui.LVTemp;
}

SavedFields FieldsToSave(form::GUI& gui) {
    SavedFields saved;
    for (const Field& field : Fields()) {
        const bool changed = Changed(gui, field);
        const std::optional<Values> stored = StoredValues(gui, field);
        const Values values = changed || !stored ? field.shown(gui) : *stored;
        auto& statement = field.part == 1 ? saved.part1 : saved.part2;
        for (std::size_t i = 0; i < field.columns.size(); ++i) {
            statement.emplace_back(field.columns[i], values[i]);
        }
        // A setting changed and changed back writes what is stored.
        saved.anyChanged =
            saved.anyChanged || !stored || values != *stored || (field.prompts && changed);
        if (field.prompts) {
            saved.promptsChanged = changed;
        }
    }
    return saved;
}

std::vector<SavedReference> ReferencesToSave(form::GUI& gui) {
    const SavedFields saved = FieldsToSave(gui);
    std::map<std::string, std::string, std::less<>> values;
    for (const auto* statement : {&saved.part1, &saved.part2}) {
        values.insert(statement->begin(), statement->end());
    }
    std::vector<SavedReference> references;
    auto add = [&](const StoredNodeRef& ref) {
        // A target without a number is named by its type alone.
        std::string key = ref.typeID == kNoNumberTypeID ? ref.type : ref.type + " " + ref.number;
        references.push_back({std::move(key), ref.typeID, ref.number});
    };
    auto row = [&](const std::string& role) {
        add({values[role + "NodeType"], values[role + "NodeNumber"], values[role + "NodeTypeID"]});
    };
    auto pair = [&](const std::string& role) {
        if (values[role + "NodeNumber"] != "0") {
            row(role);
        }
    };
    pair("Greeting");
    const std::string directory = values["DirectoryNodeNumber"];
    references.push_back(
        {std::string(node_type::kDirectoryCode) + " " + directory, kDirectoryTypeID, directory});
    for (const char* role : {"ValidMatch", "Abort", "Star", "Pound", "Zero"}) {
        row(role);
    }
    if (values["Method"] != "0") {
        return references;
    }
    for (const char* role : {"FirstPrompt", "SecondPrompt", "Timeout", "Invalid"}) {
        pair(role);
    }
    if (values["Confirm"] == "1") {
        row("BeforePrompt");
        row("AfterPrompt");
        const form::ListView& rows = ListedPrompts(gui);
        for (int position = kFixedConfirmRows; position < rows.ItemCount(); ++position) {
            add(RowReference(rows, position));
        }
    }
    pair("ConfirmationExit");
    return references;
}

bool FormChanged(form::GUI& gui) {
    return FieldsToSave(gui).anyChanged;
}

void NoteShownFields(form::GUI& gui) {
    gui.Loaded.shownFields.clear();
    for (const Field& field : Fields()) {
        try {
            gui.Loaded.shownFields[field.columns.front()] = Look(gui, field);
        } catch (const std::exception&) {
            // A field the form cannot give counts as changed.
        }
    }
    gui.Loaded.fieldsNoted = true;
    gui.ForgetOperatorChanges();
}

void NoteSavedFields(form::GUI& gui) {
    const SavedFields saved = FieldsToSave(gui);
    for (const auto* statement : {&saved.part1, &saved.part2}) {
        for (const auto& [column, value] : *statement) {
            gui.Loaded.values[LowerCase(column)] = value;
        }
    }
    NoteShownFields(gui);
}

}  // namespace dbn::session
