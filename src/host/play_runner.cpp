#include "host/play_runner.h"

#include "core/component_factory.h"
#include "form/controls/operator_input.h"
#include "form/gui.h"
#include "host/play_state.h"
#include "session/editor/business_rules.h"
#include "session/editor/component_registration.h"

#include <istream>
#include <memory>
#include <ostream>
#include <sstream>

namespace dbn::host {

namespace {

using form::ControlKind;

bool IsList(const form::Control& c) {
    return c.Kind() == ControlKind::ChoiceList || c.Kind() == ControlKind::EditableList;
}
bool IsButton(const form::Control& c) {
    return c.Kind() == ControlKind::Button;
}
bool IsListView(const form::Control& c) {
    return c.Kind() == ControlKind::ListView;
}

}  // namespace

Player::Player(std::ostream& out, std::ostream& err) : out_(out), err_(err), services_(out) {
    services_.runModal = [this](form::GUI& form) { RunModal(form); };
    services_.endModal = [this](form::GUI& form) {
        if (&form == shown_) {
            unloaded_ = true;
        }
    };
    RegisterEditorComponents(services_);
}

int Player::Run(std::istream& script) {
    script_ = &script;
    lineNumber_ = 0;
    try {
        while (RunNextLine()) {
        }
    } catch (const RunStopped& stop) {
        out_.flush();
        return stop.status;
    }
    out_.flush();
    return services_.Failed() ? kRunFailed : kRunCompleted;
}

int Player::Run(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    std::istringstream script(text);
    return Run(script);
}

bool Player::RunNextLine() {
    std::string line;
    if (script_ == nullptr || !std::getline(*script_, line)) {
        return false;
    }
    ++lineNumber_;
    const ParsedLine parsed = ParseLine(line);
    if (!parsed.error.empty()) {
        ScriptError(parsed.error);
    }
    if (parsed.action) {
        Execute(*parsed.action);
    }
    // What the line printed is out before the next line is read.
    out_.flush();
    return true;
}

void Player::Execute(const Action& action) {
    switch (action.verb) {
        case Verb::Open:
            Open(action);
            return;
        case Verb::Answer:
            services_.QueueAnswer(action.numbers[0]);
            return;
        case Verb::Show:
            Show(action);
            return;
        case Verb::Entries:
            Entries(action);
            return;
        case Verb::Simulate:
            Simulate(action);
            return;
        default:
            Operate(action);
            return;
    }
}

void Player::Open(const Action& action) {
    if (shown_ != nullptr) {
        ScriptError("a form is already shown");
    }
    std::unique_ptr<Business_Rules> editor = CreateObjectAs<Business_Rules>(kBusinessRulesClass);
    abandoned_ = false;
    const bool result = editor->ShowNodeEditor(static_cast<std::int16_t>(action.numbers[0]),
                                               static_cast<std::int16_t>(action.numbers[1]),
                                               static_cast<std::int16_t>(action.numbers[2]));
    editor.reset();
    if (abandoned_) {
        out_ << "abandoned\n";
    } else {
        out_ << "returned " << (result ? "true" : "false") << "\n";
    }
}

void Player::RunModal(form::GUI& form) {
    if (shown_ != nullptr) {
        ScriptError("a second form cannot be shown");
    }
    shown_ = &form;
    unloaded_ = false;
    // Forget the form however the show ends: it is destroyed after it.
    struct Forget {
        form::GUI*& shown;
        ~Forget() { shown = nullptr; }
    } forget{shown_};
    bool more = true;
    while (!unloaded_ && more) {
        more = RunNextLine();
    }
    if (!unloaded_) {
        // The script ended with the form open: discard the changes and close it.
        form.DiscardChangesAndUnload();
        abandoned_ = true;
    }
}

void Player::Operate(const Action& action) {
    namespace input = form::operator_input;
    form::GUI& form = ShownForm();
    if (action.verb == Verb::Close) {
        // The close box; a refused unload leaves the form shown.
        form.Unload();
        return;
    }
    form::Control& control = FindControl(action.operands[0]);
    bool taken = false;
    switch (action.verb) {
        case Verb::Pick: {
            auto& list = ControlAs<form::ListControl>(action.operands[0], IsList, "a list");
            if (!list.AcceptsInput()) {
                break;
            }
            const int index = list.FindExactEntry(action.operands[1]);
            if (index < 0) {
                ScriptError(list.Name() + " has no entry \"" + action.operands[1] + "\"");
            }
            taken = input::Pick(list, index);
            break;
        }
        case Verb::Type:
            if (control.Kind() == ControlKind::TextField) {
                taken = input::Type(static_cast<form::TextField&>(control), action.operands[1]);
            } else if (control.Kind() == ControlKind::EditableList) {
                taken = input::Type(static_cast<form::ListControl&>(control), action.operands[1]);
            } else {
                ScriptError(control.Name() + " is not a text field or an editable list");
            }
            break;
        case Verb::Click:
            taken = input::Press(ControlAs<form::Button>(action.operands[0], IsButton, "a button"));
            break;
        case Verb::Row: {
            auto& list = ControlAs<form::ListView>(action.operands[0], IsListView, "a list view");
            if (!list.AcceptsInput()) {
                break;
            }
            form::ListItem* row = list.FindItem(action.operands[1]);
            if (row == nullptr) {
                ScriptError(list.Name() + " has no row \"" + action.operands[1] + "\"");
            }
            taken = input::ClickRow(list, *row);
            break;
        }
        case Verb::Focus:
            taken = input::Focus(control);
            break;
        case Verb::Header:
            taken = input::PressHeader(
                ControlAs<form::ListView>(action.operands[0], IsListView, "a list view"));
            break;
        case Verb::Scroll:
            taken = input::Scroll(
                ControlAs<form::ListView>(action.operands[0], IsListView, "a list view"));
            break;
        default:
            break;
    }
    if (!taken) {
        Ignored(control);
    }
}

void Player::Show(const Action& action) {
    form::GUI& form = ShownForm();
    // Check every name before printing anything.
    std::vector<std::string> lines;
    for (const std::string& name : action.operands) {
        if (name == "GUI") {
            lines.push_back(DescribeForm(form));
            continue;
        }
        form::Control& control = FindControl(name);
        std::optional<std::vector<std::string>> state = DescribeControl(control);
        if (!state) {
            ScriptError(name + " has no state to show");
        }
        lines.insert(lines.end(), state->begin(), state->end());
    }
    for (const std::string& line : lines) {
        out_ << line << "\n";
    }
}

void Player::Entries(const Action& action) {
    ShownForm();
    form::Control& control = FindControl(action.operands[0]);
    std::optional<std::string> line = DescribeEntries(control);
    if (!line) {
        ScriptError(control.Name() + " is not a list");
    }
    out_ << *line << "\n";
}

form::GUI& Player::ShownForm() {
    if (shown_ == nullptr) {
        ScriptError("no form is shown");
    }
    return *shown_;
}

form::Control& Player::FindControl(const std::string& name) {
    form::Control* control = ShownForm().FindControl(name);
    if (control == nullptr) {
        ScriptError("unknown control \"" + name + "\"");
    }
    return *control;
}

template <class T>
T& Player::ControlAs(const std::string& name, bool accepted(const form::Control&),
                     const char* what) {
    form::Control& control = FindControl(name);
    if (!accepted(control)) {
        ScriptError(name + " is not " + what);
    }
    return static_cast<T&>(control);
}

void Player::Ignored(const form::Control& control) {
    out_ << "ignored: " << control.Name() << "\n";
}

void Player::ScriptError(const std::string& why) {
    out_.flush();
    err_ << "error: " << lineNumber_ << ": " << why << "\n";
    throw RunStopped{kRunScriptError};
}

}  // namespace dbn::host
