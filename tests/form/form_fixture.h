#pragma once

// A loaded editor form over FakeServices, filled the way an editing session
// fills it: the collections with a small node-type catalogue, the node-type
// pickers, the fixed choice lists, the record selector (nodes 3, 5, 7, showing
// 5), the default actions and a node shown with Apply disabled. The form's own
// session object is a fake that records loads and saves.

#include "fake_services.h"
#include "form/business_rules_link.h"
#include "form/gui.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace dbn::testing {

// What the form asked of its session object; outlives the object itself.
struct LinkLog {
    std::vector<std::int16_t> loads;
    std::vector<std::int16_t> saves;
    // Answers whether a save committed (true unless a test says otherwise).
    std::function<bool(std::int16_t)> onSave = [](std::int16_t) { return true; };
    int released = 0;
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
        return log_.onSave(nodeNumber);
    }

private:
    LinkLog& log_;
};

// The catalogue: type ID, code, highest number (limit 0: not available).
struct CatalogueType {
    int id;
    const char* code;
    int highest;
};
inline const std::vector<CatalogueType> kCatalogue = {
    {0, "MSG", 20}, {4, "XFER", 12}, {8, "LIST", 5},   {12, "PAAS", 0},
    {15, "DBN", 9}, {16, "DIR", 99}, {814, "NOOP", 0}, {817, "M_ON", 20},
};
// Types the prompt pickers and the instruction pickers offer (PAAS is held
// back in both, as its limit is 0).
inline const std::vector<int> kPromptTypes = {0, 8, 12, 814};
inline const std::vector<int> kInstructionTypes = {0, 4, 8, 12, 15, 814, 817};

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
        FillCatalogue();
        FillPickers(kPromptTypes,
                    {&gui.cmbGreetingNode, &gui.cmbFirstMatchPrompt, &gui.cmbSecondMatchPrompt,
                     &gui.cmbConfirmNode, &gui.cmbExitPromptNode});
        FillPickers(kInstructionTypes,
                    {&gui.cmbTimeoutNode, &gui.cmbInvalidNode, &gui.cmbAbortNode, &gui.cmbStarNode,
                     &gui.cmbPoundNode, &gui.cmbZeroNode, &gui.cmbValidMatchNode});
        FillFixedLists();
        FillRecordSelector();
        ShowNode();
        gui.cmdApply.SetEnabled(false);
        services.boxes.clear();
    }

    // Numbers "1" .. "last" as entries with tag 0.
    static void AddNumbers(form::ListControl& list, int last) {
        for (int n = 1; n <= last; ++n) {
            list.AddItem(std::to_string(n));
        }
    }

    // Entries with their tags.
    static void AddTagged(form::ListControl& list,
                          const std::vector<std::pair<const char*, int>>& entries) {
        for (const auto& [text, tag] : entries) {
            list.AddItem(text);
            list.SetItemData(list.NewIndex(), tag);
        }
    }

    // Marks the node as changed, as an operator's edit would.
    void MakeDirty() { gui.txtDescription.SetText(gui.txtDescription.Text() + "x"); }

private:
    void FillCatalogue() {
        for (const CatalogueType& type : kCatalogue) {
            const std::string key = std::to_string(type.id);
            gui.NodeNameCollection().Add(type.code, key);
            gui.MaxNodeNumberCollection().Add(std::to_string(type.highest), key);
            if (type.highest == 0 && type.id != 814) {
                gui.NotAvailableMSGLISTNOOPNode().Add(type.code, key);
                gui.NotAvailableAllInstructionsNode().Add(type.code, key);
            }
        }
    }

    void FillPickers(const std::vector<int>& types, std::vector<form::ListControl*> pickers) {
        for (form::ListControl* picker : pickers) {
            picker->Clear();
        }
        for (int id : types) {
            if (gui.NotAvailableAllInstructionsNode().Contains(std::to_string(id))) {
                continue;
            }
            for (form::ListControl* picker : pickers) {
                picker->AddItem(gui.NodeNameCollection().Item(std::to_string(id)));
                picker->SetItemData(picker->NewIndex(), id);
            }
        }
    }

    void FillFixedLists() {
        AddNumbers(gui.cmbDirectory, 99);
        gui.cmbDirectory.SetListIndex(0);
        for (form::ListControl* list :
             {&gui.cmbFirstMinDigits, &gui.cmbFirstMaxDigits, &gui.cmbSecondMinDigits,
              &gui.cmbSecondMaxDigits, &gui.cmbMaxMatches}) {
            AddNumbers(*list, 9);
        }
        gui.cmbFirstMinDigits.SetListIndex(2);
        gui.cmbFirstMaxDigits.SetListIndex(4);
        gui.cmbSecondMinDigits.SetListIndex(2);
        gui.cmbSecondMaxDigits.SetListIndex(4);
        gui.cmbMaxMatches.SetListIndex(4);
        AddNumbers(gui.cmbRetryLimit, 5);
        gui.cmbRetryLimit.SetListIndex(0);
        AddNumbers(gui.cmbSelTimeOut, 60);
        gui.cmbSelTimeOut.SetListIndex(4);
        AddNumbers(gui.cmbDigitTimeOut, 15);
        gui.cmbDigitTimeOut.SetListIndex(9);
        AddTagged(gui.cmbMethod, {{"Custom", 0}, {"Default Last Name", 1}});
        AddTagged(gui.cmbfirstMatch,
                  {{"Last Name", 1}, {"First Name", 2}, {"Both Names", 3}, {"Extension", 4}});
        gui.cmbfirstMatch.SetListIndex(0);
        AddTagged(gui.cmbsecondMatch, {{"None", 0}, {"Last Name", 1}, {"First Name", 2}});
        gui.cmbsecondMatch.SetListIndex(0);
        AddTagged(gui.cmbLanguage1, {{"None", 0}, {"English", 1}, {"French", 2}});
        gui.cmbLanguage1.SetListIndex(1);
        AddTagged(gui.cmbLanguage2, {{"None", 0}, {"English", 1}, {"French", 2}});
        gui.cmbLanguage2.SetListIndex(0);
        AddTagged(gui.cmbConfirmation, {{"No", 0}, {"Yes", 1}});
        gui.cmbConfirmation.SetListIndex(1);
        AddTagged(gui.cmbPlayName, {{"No", 0}, {"Yes", 1}});
        gui.cmbPlayName.SetListIndex(1);
    }

    void FillRecordSelector() {
        for (int number : {3, 5, 7}) {
            gui.cmbNode.AddItem("DBN " + std::to_string(number));
            gui.cmbNode.SetItemData(gui.cmbNode.NewIndex(), number);
        }
        gui.cmbNode.SetListIndex(1);
    }

    // A node on show: custom method, greeting MSG 1, default actions.
    void ShowNode() {
        gui.txtDescription.SetText("Main directory");
        gui.cmbMethod.SetListIndex(0);
        gui.cmbGreetingNode.SetText("MSG");
        gui.cmbTimeoutNode.SetText("MSG");
        gui.cmbInvalidNode.SetText("MSG");
        gui.cmbFirstMatchPrompt.SetText("MSG");
        gui.cmbExitPromptNode.SetText("MSG");
        gui.cmdActionsDefault_Click();
    }
};

}  // namespace dbn::testing
