#pragma once

// A FormServices for tests: records every box, answers questions from a
// queue given in advance, and runs a test's actions as the modal show.

#include "form/form_services.h"
#include "form/gui.h"

#include <deque>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace dbn::testing {

struct ShownBox {
    std::string text;
    form::MsgBoxButtons buttons;
    form::MsgBoxIcon icon;
    std::string title;
};

class FakeServices : public form::FormServices {
public:
    // Answers for boxes with more than an OK button, in order.
    std::deque<int> answers;
    // Answers for the confirmation dialog, in order.
    std::deque<long> confirmAnswers;
    std::vector<ShownBox> boxes;
    std::vector<std::string> confirmations;
    int busyDepth = 0;  // > 0 while the busy cursor shows
    int doEventsCalls = 0;
    int modalShows = 0;
    int endModals = 0;
    // Runs while the form is shown modally (the operator's actions).
    std::function<void(form::GUI&)> whileShown;

    int MsgBox(const std::string& text, form::MsgBoxButtons buttons, form::MsgBoxIcon icon,
               const std::string& title) override {
        boxes.push_back({text, buttons, icon, title});
        if (buttons == form::MsgBoxButtons::OK) {
            return form::kAnswerOK;
        }
        if (answers.empty()) {
            throw std::logic_error("no answer queued for: " + title + ": " + text);
        }
        int answer = answers.front();
        answers.pop_front();
        return answer;
    }

    long Confirm(const std::string& text, const std::string& title) override {
        confirmations.push_back(text);
        (void)title;
        if (confirmAnswers.empty()) {
            throw std::logic_error("no confirmation answer queued for: " + text);
        }
        long answer = confirmAnswers.front();
        confirmAnswers.pop_front();
        return answer;
    }

    void SetBusyCursor(bool busy) override { busy ? ++busyDepth : busyDepth = 0; }
    void DoEvents() override { ++doEventsCalls; }

    void ShowModal(form::GUI& form) override {
        ++modalShows;
        if (whileShown) {
            whileShown(form);
        }
    }
    void EndModal(form::GUI&) override { ++endModals; }

    // Texts of the boxes shown so far, and forget them.
    std::vector<std::string> TakeBoxTexts() {
        std::vector<std::string> texts;
        for (const ShownBox& box : boxes) {
            texts.push_back(box.text);
        }
        boxes.clear();
        return texts;
    }
};

}  // namespace dbn::testing
