// The directory check of the node on show, under the settings the editor
// form shows now, saved or not: the operator sees the effect of a change of
// digits or mode before saving.
#include "form/gui.h"
#include "session/editor/business_rules.h"
#include "session/editor/form_values.h"
#include "session/nodes/directory_check.h"

namespace dbn::session {

directory::SearchSettings FormSearchSettings(const form::GUI& form) {
    if (form.cmbMethod.ListIndex() == 1) {
        return directory::DefaultLastNameSearch();
    }
    const bool confirmation = ShownTag(form.cmbConfirmation, 1) != 0;
    return directory::CustomSearch(
        directory::MatchModeOfTag(ShownTag(form.cmbfirstMatch, 1)),
        ShownNumber(form.cmbFirstMinDigits), ShownNumber(form.cmbFirstMaxDigits),
        ShownTag(form.cmbsecondMatch, 0), ShownNumber(form.cmbSecondMinDigits),
        ShownNumber(form.cmbSecondMaxDigits), confirmation, ShownNumber(form.cmbMaxMatches));
}

std::vector<directory::DirectoryName> ReadFormDirectoryNames(form::GUI& form) {
    const auto directory = static_cast<std::int16_t>(ShownNumber(form.cmbDirectory));
    auto read = [&](DataBase& db) {
        return ReadDirectoryNames(db, form.ConfigID(), form.PartitionID(), directory);
    };
    if (auto* rules = dynamic_cast<Business_Rules*>(form.FormBusinessRules())) {
        return read(rules->Db());
    }
    DataBase db;
    return read(db);
}

directory::DirectoryReport CheckFormNode(form::GUI& form) {
    const auto directory = static_cast<std::int16_t>(ShownNumber(form.cmbDirectory));
    return directory::MakeDirectoryReport(form.ConfigID(), form.PartitionID(), form.nodeNumber(),
                                          directory, FormSearchSettings(form),
                                          ReadFormDirectoryNames(form));
}

}  // namespace dbn::session
