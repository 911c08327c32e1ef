#pragma once

// A trial call through the node on show in the editor, under the settings
// the form shows now: the model behind the "Try as Caller" window. It keeps
// the call's steps, and starts the call again when the form's settings,
// prompts, targets or directory number change.

#include "directory/call_simulation.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace dbn::form {
class GUI;
}

namespace dbn::session {

class CallerTrial {
public:
    explicit CallerTrial(form::GUI& form);
    ~CallerTrial();
    CallerTrial(const CallerTrial&) = delete;
    CallerTrial& operator=(const CallerTrial&) = delete;

    // Reads the form's plan again and starts the call again when it changed
    // (always with `restart`, which reads the directory's names again too).
    // True when the call started again.
    bool Refresh(bool restart = false);
    // Answers one event; nothing when there is no call (see Problem()).
    std::optional<directory::CallStep> Answer(directory::CallEvent event);

    const std::vector<directory::CallStep>& Steps() const noexcept { return steps_; }
    // Every step as text, in order.
    std::string Transcript() const;
    // Why no call can be made (the directory node does not exist), or empty.
    const std::string& Problem() const noexcept { return problem_; }
    bool Ended() const noexcept;

private:
    // The names of the directory the form shows, read when the call starts
    // again by request or the directory number changes, not at every change
    // of the form.
    struct DirectoryNames {
        int number = 0;
        std::vector<directory::DirectoryName> names;
    };

    form::GUI& form_;
    std::optional<DirectoryNames> directory_;
    std::optional<directory::CallPlan> plan_;
    std::unique_ptr<directory::CallSimulator> simulator_;
    std::vector<directory::CallStep> steps_;
    std::string problem_;
};

}  // namespace dbn::session
