// The directory check of the node on show, under the settings the editor
// form shows now, saved or not: the operator sees the effect of a change of
// digits or mode before saving.
#include "form/gui.h"
#include "session/business_rules.h"
#include "session/directory_check.h"

#include <charconv>

namespace dbn::session {
namespace {

// The selected entry's text of a number list as a number; 0 when nothing
// (or no number) is selected.
int Number(const form::ListControl& list) {
    const std::string& text = list.Text();
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

// The tag of the selected entry, or `none` when nothing is selected.
int SelectedTag(const form::ListControl& list, int none) {
    return list.ListIndex() >= 0 ? list.ItemData(list.ListIndex()) : none;
}

}  // namespace

directory::SearchSettings FormSearchSettings(const form::GUI& form) {
    if (form.cmbMethod.ListIndex() == 1) {
        return directory::DefaultLastNameSearch();
    }
    const bool confirmation = SelectedTag(form.cmbConfirmation, 1) != 0;
    return directory::CustomSearch(directory::MatchModeOfTag(SelectedTag(form.cmbfirstMatch, 1)),
                                   Number(form.cmbFirstMinDigits), Number(form.cmbFirstMaxDigits),
                                   SelectedTag(form.cmbsecondMatch, 0),
                                   Number(form.cmbSecondMinDigits), Number(form.cmbSecondMaxDigits),
                                   confirmation, Number(form.cmbMaxMatches));
}

directory::DirectoryReport CheckFormNode(form::GUI& form) {
    const auto directory = static_cast<std::int16_t>(Number(form.cmbDirectory));
    auto read = [&](DataBase& db) {
        return ReadDirectoryNames(db, form.ConfigID(), form.PartitionID(), directory);
    };
    std::vector<directory::DirectoryName> names;
    if (auto* rules = dynamic_cast<Business_Rules*>(form.FormBusinessRules())) {
        names = read(rules->Db());
    } else {
        DataBase db;
        names = read(db);
    }
    return directory::MakeDirectoryReport(form.ConfigID(), form.PartitionID(), form.nodeNumber(),
                                          directory, FormSearchSettings(form), std::move(names));
}

}  // namespace dbn::session
