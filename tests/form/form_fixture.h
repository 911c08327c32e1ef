#pragma once

// Shared by the form tests: error and event checks for the control model,
// whole-row access to the list views, and a loaded editor form over
// FakeServices, filled the way an editing session fills it (a small node-type
// catalogue, the pickers, the fixed lists, the record selector showing DBN 5
// of 3, 5, 7, the default actions, Apply disabled). The form's session object
// is a fake that records loads and saves.

#include "core/component_error.h"
#include "error_of.h"
#include "fake_services.h"
#include "form/business_rules_link.h"
#include "form/controls/operator_input.h"
#include "form/gui.h"
#include "list_text.h"

#include <gtest/gtest.h>
#include <map>

#include <cstdint>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace dbn::testing {

namespace input = form::operator_input;
using Texts = std::vector<std::string>;

// The aspects a control reports, in order.
struct ChangeLog {
    explicit ChangeLog(form::Control& control) {
        control.Observe([this](form::Control&, form::ChangeAspect a) { aspects.push_back(a); });
    }
    std::vector<form::ChangeAspect> aspects;
};

// The caption of a label, button or frame, or the text of any other control.
inline std::string TextOf(const form::Control& control) {
    if (auto* label = dynamic_cast<const form::Label*>(&control)) {
        return label->Caption();
    }
    if (auto* button = dynamic_cast<const form::Button*>(&control)) {
        return button->Caption();
    }
    if (auto* frame = dynamic_cast<const form::Frame*>(&control)) {
        return frame->Caption();
    }
    if (auto* field = dynamic_cast<const form::TextField*>(&control)) {
        return field->Text();
    }
    auto* list = dynamic_cast<const form::ListControl*>(&control);
    return list ? list->Text() : "";
}

// What the form asked of its session object; outlives the object itself.
struct LinkLog {
    std::vector<std::int16_t> loads;
    std::vector<std::int16_t> saves;
    bool saveCommits = true;
    int released = 0;
    // Node descriptions by type ID and number, and how often one was asked.
    std::map<std::pair<std::int32_t, std::int16_t>, std::string> descriptions;
    int lookups = 0;
};

class FakeLink : public form::BusinessRulesLink {
public:
    explicit FakeLink(LinkLog& log) : log_(log) {}
    ~FakeLink() override { ++log_.released; }
    bool LoadData(std::int16_t nodeNumber) override {
        log_.loads.push_back(nodeNumber);
        return true;
    }
    bool SaveChanges(std::int16_t nodeNumber) override {
        log_.saves.push_back(nodeNumber);
        return log_.saveCommits;
    }
    std::optional<std::string> NodeDescription(std::int32_t typeID, std::int16_t number) override {
        ++log_.lookups;
        const auto found = log_.descriptions.find({typeID, number});
        return found == log_.descriptions.end() ? std::nullopt : std::optional(found->second);
    }

private:
    LinkLog& log_;
};

class FormFixture : public ::testing::Test {
protected:
    FakeServices services;
    LinkLog link;
    form::GUI gui{services};

    FormFixture() {
        gui.MakeFormBusinessRules = [this] { return std::make_unique<FakeLink>(link); };
        gui.Load();
        gui.CreateCollections();
        gui.SetConfigID(1);
        gui.SetPartitionID(2);
        gui.SetnodeNumber(5);
        gui.ResetConfirmationListView();
        gui.ResetActionsListView();
        // Type ID, code and highest number; PAAS (limit 0) is not available.
        std::istringstream types(
            "0 MSG 20  4 XFER 12  8 LIST 5  12 PAAS 0  15 DBN 9  16 DIR 99  814 NOOP 0  817 M_ON "
            "20");
        for (std::string id, code, highest; types >> id >> code >> highest;) {
            gui.NodeNameCollection().Add(code, id);
            gui.MaxNodeNumberCollection().Add(highest, id);
        }
        gui.NotAvailableMSGLISTNOOPNode().Add("PAAS", "12");
        gui.NotAvailableAllInstructionsNode().Add("PAAS", "12");
        FillPickers({{"MSG", 0}, {"LIST", 8}, {"NOOP", 814}},
                    {&gui.cmbGreetingNode, &gui.cmbFirstMatchPrompt, &gui.cmbSecondMatchPrompt,
                     &gui.cmbConfirmNode, &gui.cmbExitPromptNode});
        FillPickers(
            {{"MSG", 0}, {"XFER", 4}, {"LIST", 8}, {"DBN", 15}, {"NOOP", 814}, {"M_ON", 817}},
            {&gui.cmbTimeoutNode, &gui.cmbInvalidNode, &gui.cmbAbortNode, &gui.cmbStarNode,
             &gui.cmbPoundNode, &gui.cmbZeroNode, &gui.cmbValidMatchNode});
        // Number lists: name, highest number, index selected.
        std::istringstream numbers(
            "cmbDirectory 99 0  cmbFirstMinDigits 9 2  cmbFirstMaxDigits 9 4  cmbSecondMinDigits 9 "
            "2 "
            "cmbSecondMaxDigits 9 4  cmbMaxMatches 9 4  cmbRetryLimit 5 0  cmbSelTimeOut 60 4 "
            "cmbDigitTimeOut 15 9");
        std::string name;
        for (int last = 0, index = 0; numbers >> name >> last >> index;) {
            auto& list = dynamic_cast<form::ListControl&>(*gui.FindControl(name));
            for (int n = 1; n <= last; ++n) {
                list.AddItem(std::to_string(n));
            }
            list.SetListIndex(index);
        }
        const Tagged languages = {{"None", 0}, {"English", 1}, {"French", 2}};
        const Tagged noYes = {{"No", 0}, {"Yes", 1}};
        Fill(gui.cmbMethod, {{"Custom", 0}, {"Default Last Name", 1}}, 0);
        Fill(gui.cmbfirstMatch,
             {{"Last Name", 1}, {"First Name", 2}, {"Both Names", 3}, {"Extension", 4}}, 0);
        Fill(gui.cmbsecondMatch, {{"None", 0}, {"Last Name", 1}, {"First Name", 2}}, 0);
        Fill(gui.cmbLanguage1, languages, 1);
        Fill(gui.cmbLanguage2, languages, 0);
        Fill(gui.cmbConfirmation, noYes, 1);
        Fill(gui.cmbPlayName, noYes, 1);
        Fill(gui.cmbNode, {{"DBN 3", 3}, {"DBN 5", 5}, {"DBN 7", 7}}, 1);
        // The node on show: greeting and the other prompts MSG 1, default actions.
        gui.txtDescription.SetText("Main directory");
        for (form::ListControl* node :
             {&gui.cmbGreetingNode, &gui.cmbTimeoutNode, &gui.cmbInvalidNode,
              &gui.cmbFirstMatchPrompt, &gui.cmbExitPromptNode}) {
            node->SetText("MSG");
        }
        gui.cmdActionsDefault_Click();
        gui.cmdApply.SetEnabled(false);
        services.boxes.clear();
    }

    // The named controls' texts or captions, each followed by " off" when it
    // is disabled and " hidden" when it is hidden, joined by "|".
    std::string Show(const std::string& names) {
        std::istringstream words(names);
        std::string shown;
        for (std::string name, separator; words >> name; separator = "|") {
            const form::Control* control = gui.FindControl(name);
            if (control == nullptr) {
                return "no control " + name;
            }
            shown += separator + TextOf(*control) + (control->Enabled() ? "" : " off") +
                     (control->Visible() ? "" : " hidden");
        }
        return shown;
    }

    // Marks the node as changed, as an operator's edit would.
    void MakeDirty() { gui.txtDescription.SetText(gui.txtDescription.Text() + "x"); }

private:
    using Tagged = std::vector<std::pair<const char*, int>>;

    static void Fill(form::ListControl& list, const Tagged& entries, int index) {
        for (const auto& [text, tag] : entries) {
            list.AddItem(text);
            list.SetItemData(list.NewIndex(), tag);
        }
        list.SetListIndex(index);
    }

    static void FillPickers(const Tagged& types, std::vector<form::ListControl*> pickers) {
        for (form::ListControl* picker : pickers) {
            picker->Clear();
            for (const auto& [code, id] : types) {
                picker->AddItem(code);
                picker->SetItemData(picker->NewIndex(), id);
            }
        }
    }
};

}  // namespace dbn::testing
