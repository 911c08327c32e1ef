// The fixed choice lists and their start-up selections. Every selection runs
// the list's click handler, so the order below is part of the behaviour.
#include "session/editor/business_rules.h"

#include "form/error_trap.h"
#include "form/gui.h"
#include "nodefields/node_fields.h"
#include "session/editor/form_lists.h"

namespace dbn {
namespace {

// The numbers the field's rule allows, from its lowest.
void FillNumbers(form::ListControl& list, const char* column) {
    const nodefields::FieldRule& rule = *nodefields::FieldOfColumn(column);
    list.Clear();
    for (int number = rule.low; number <= rule.high; ++number) {
        session::AddEntry(list, std::to_string(number));
    }
}

// The field's names, each tagged with its stored value.
void FillNamed(form::ListControl& list, const char* column) {
    list.Clear();
    for (const auto& [stored, name] : nodefields::FieldOfColumn(column)->names) {
        session::AddEntry(list, name, stored);
    }
}

}  // namespace

void Business_Rules::LoadStaticConstants() {
    form::RunTrapped(services_, "LoadStaticConstants", [&] {
        form::GUI& form = Form();

        FillNumbers(form.cmbDirectory, "DirectoryNodeNumber");
        form.cmbDirectory.SetListIndex(0);

        FillNumbers(form.cmbFirstMinDigits, "FirstMinDigits");
        FillNumbers(form.cmbFirstMaxDigits, "FirstMaxDigits");
        FillNumbers(form.cmbSecondMinDigits, "SecondMinDigits");
        FillNumbers(form.cmbSecondMaxDigits, "SecondMaxDigits");
        FillNumbers(form.cmbMaxMatches, "MaxMatch");
        form.cmbFirstMinDigits.SetListIndex(2);
        form.cmbFirstMaxDigits.SetListIndex(4);
        form.cmbSecondMinDigits.SetListIndex(2);
        form.cmbSecondMaxDigits.SetListIndex(4);
        form.cmbMaxMatches.SetListIndex(4);

        FillNumbers(form.cmbRetryLimit, "RetryLimit");
        form.cmbRetryLimit.SetListIndex(0);
        FillNumbers(form.cmbSelTimeOut, "SelectionTimeout");
        form.cmbSelTimeOut.SetListIndex(4);
        FillNumbers(form.cmbDigitTimeOut, "DigitTimeout");
        form.cmbDigitTimeOut.SetListIndex(9);

        FillNamed(form.cmbMethod, "Method");

        FillNamed(form.cmbfirstMatch, "FirstMode");
        form.cmbfirstMatch.SetListIndex(0);

        FillNamed(form.cmbsecondMatch, "SecondMode");
        form.cmbsecondMatch.SetListIndex(0);

        form.cmbLanguage2.Clear();  // empty while the first list's selection runs
        FillNamed(form.cmbLanguage1, "FirstLanguage");
        form.cmbLanguage1.SetListIndex(1);
        FillNamed(form.cmbLanguage2, "SecondLanguage");
        form.cmbLanguage2.SetListIndex(0);

        FillNamed(form.cmbConfirmation, "Confirm");
        form.cmbConfirmation.SetListIndex(1);

        FillNamed(form.cmbPlayName, "PlayName");
        form.cmbPlayName.SetListIndex(1);
    });
}

}  // namespace dbn
