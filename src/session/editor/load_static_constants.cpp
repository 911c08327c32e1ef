// The fixed choice lists and their start-up selections. Every selection runs
// the list's click handler, so the order below is part of the behaviour.
#include "session/editor/business_rules.h"

#include "form/error_trap.h"
#include "form/gui.h"
#include "session/editor/form_lists.h"

namespace dbn {
namespace {

void FillNumbers(form::ListControl& list, int last) {
    list.Clear();
    for (int number = 1; number <= last; ++number) {
        session::AddEntry(list, std::to_string(number));
    }
}

void FillNamed(form::ListControl& list,
               std::initializer_list<std::pair<const char*, int>> entries) {
    for (const auto& [text, tag] : entries) {
        session::AddEntry(list, text, tag);
    }
}

constexpr std::initializer_list<std::pair<const char*, int>> kLanguages = {
    {"None", 0}, {"English", 1}, {"French", 2}};
constexpr std::initializer_list<std::pair<const char*, int>> kNoYes = {{"No", 0}, {"Yes", 1}};

}  // namespace

void Business_Rules::LoadStaticConstants() {
    form::RunTrapped(services_, "LoadStaticConstants", [&] {
        form::GUI& form = Form();

        FillNumbers(form.cmbDirectory, 99);
        form.cmbDirectory.SetListIndex(0);

        form::ListControl* const digitLists[] = {&form.cmbFirstMinDigits, &form.cmbFirstMaxDigits,
                                                 &form.cmbSecondMinDigits, &form.cmbSecondMaxDigits,
                                                 &form.cmbMaxMatches};
        for (form::ListControl* list : digitLists) {
            list->Clear();
        }
        for (int number = 1; number <= 9; ++number) {
            for (form::ListControl* list : digitLists) {
                session::AddEntry(*list, std::to_string(number));
            }
        }
        form.cmbFirstMinDigits.SetListIndex(2);
        form.cmbFirstMaxDigits.SetListIndex(4);
        form.cmbSecondMinDigits.SetListIndex(2);
        form.cmbSecondMaxDigits.SetListIndex(4);
        form.cmbMaxMatches.SetListIndex(4);

        FillNumbers(form.cmbRetryLimit, 5);
        form.cmbRetryLimit.SetListIndex(0);
        FillNumbers(form.cmbSelTimeOut, 60);
        form.cmbSelTimeOut.SetListIndex(4);
        FillNumbers(form.cmbDigitTimeOut, 15);
        form.cmbDigitTimeOut.SetListIndex(9);

        form.cmbMethod.Clear();
        FillNamed(form.cmbMethod, {{"Custom", 0}, {"Default Last Name", 1}});

        form.cmbfirstMatch.Clear();
        FillNamed(form.cmbfirstMatch,
                  {{"Last Name", 1}, {"First Name", 2}, {"Both Names", 3}, {"Extension", 4}});
        form.cmbfirstMatch.SetListIndex(0);

        form.cmbsecondMatch.Clear();
        FillNamed(form.cmbsecondMatch, {{"None", 0}, {"Last Name", 1}, {"First Name", 2}});
        form.cmbsecondMatch.SetListIndex(0);

        form.cmbLanguage1.Clear();
        form.cmbLanguage2.Clear();
        FillNamed(form.cmbLanguage1, kLanguages);
        form.cmbLanguage1.SetListIndex(1);
        FillNamed(form.cmbLanguage2, kLanguages);
        form.cmbLanguage2.SetListIndex(0);

        form.cmbConfirmation.Clear();
        FillNamed(form.cmbConfirmation, kNoYes);
        form.cmbConfirmation.SetListIndex(1);

        form.cmbPlayName.Clear();
        FillNamed(form.cmbPlayName, kNoYes);
        form.cmbPlayName.SetListIndex(1);
    });
}

}  // namespace dbn
