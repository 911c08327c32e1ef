// The play line "simulate KEYS...": the transcript of a call through the
// node on show, under the settings the form shows now.
#include "core/component_error.h"
#include "directory/call_simulation.h"
#include "host/play_runner.h"
#include "session/editor/caller_simulation.h"

#include <ostream>

namespace dbn::host {

void Player::Simulate(const Action& action) {
    form::GUI& form = ShownForm();
    std::vector<directory::CallEvent> events;
    for (const std::string& word : action.operands) {
        std::string why;
        std::optional<std::vector<directory::CallEvent>> words =
            directory::ParseCallEvents(word, why);
        if (!words) {
            ScriptError(why);
        }
        events.insert(events.end(), words->begin(), words->end());
    }
    try {
        directory::CallSimulator simulator(session::FormCallPlan(form));
        for (const directory::CallStep& step : directory::SimulateCall(simulator, events)) {
            out_ << directory::StepText(step);
        }
        if (!simulator.Ended()) {
            out_ << "the call has not left the node\n";
        }
    } catch (const ComponentError& error) {
        out_ << "simulate: " << error.Description() << "\n";
    }
}

}  // namespace dbn::host
