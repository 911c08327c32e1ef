#pragma once

#include "host/play_script.h"
#include "host/play_services.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace dbn::form {
class Control;
class GUI;
}  // namespace dbn::form

namespace dbn::host {

// Runs a play script against the real editor component: `open` creates the
// editor by its class name and shows a node; while the form is shown modally
// the following lines are the operator's actions on it.
class Player {
public:
    // Normal output goes to out, script errors to err.
    Player(std::ostream& out, std::ostream& err);
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    // Runs the script line by line, each as soon as it has been read, so
    // that a program feeding it through a pipe can act between lines;
    // answers the exit status (kRun*).
    int Run(std::istream& script);
    int Run(const std::vector<std::string>& lines);

private:
    // Reads and runs the next line; false at the end of the script.
    bool RunNextLine();
    void Execute(const Action& action);
    void Open(const Action& action);
    // The modal show: runs lines until the form unloads or the script ends.
    void RunModal(form::GUI& form);
    void Operate(const Action& action);
    void Show(const Action& action);
    void Entries(const Action& action);
    void Simulate(const Action& action);

    form::GUI& ShownForm();
    form::Control& FindControl(const std::string& name);
    template <class T>
    T& ControlAs(const std::string& name, bool accepted(const form::Control&), const char* what);
    void Ignored(const form::Control& control);
    [[noreturn]] void ScriptError(const std::string& why);

    std::ostream& out_;
    std::ostream& err_;
    PlayServices services_;
    std::istream* script_ = nullptr;
    std::size_t lineNumber_ = 0;  // 1-based number of the line running
    form::GUI* shown_ = nullptr;  // the form shown modally, if any
    bool unloaded_ = false;       // the shown form has unloaded
    bool abandoned_ = false;      // the script ended while the form was shown
};

}  // namespace dbn::host
