#include "session/editor/caller_trial.h"

#include "core/component_error.h"
#include "form/gui.h"
#include "session/editor/caller_simulation.h"
#include "session/editor/form_values.h"
#include "session/nodes/directory_check.h"

#include <exception>

namespace dbn::session {

CallerTrial::CallerTrial(form::GUI& form) : form_(form) {}

CallerTrial::~CallerTrial() = default;

bool CallerTrial::Refresh(bool restart) {
    std::optional<directory::CallPlan> plan;
    std::string problem;
    try {
        const int number = ShownNumber(form_.cmbDirectory);
        if (restart || !directory_ || directory_->number != number) {
            directory_.reset();
            directory_ = DirectoryNames{number, ReadFormDirectoryNames(form_)};
        }
        plan = FormCallPlan(form_, directory_->names);
    } catch (const ComponentError& error) {
        problem = error.Description();
    } catch (const std::exception& error) {
        problem = error.what();
    }
    if (!restart && plan == plan_ && problem == problem_) {
        return false;
    }
    plan_ = std::move(plan);
    problem_ = std::move(problem);
    steps_.clear();
    simulator_.reset();
    if (plan_) {
        simulator_ = std::make_unique<directory::CallSimulator>(*plan_);
        steps_.push_back(simulator_->Start());
    }
    return true;
}

std::optional<directory::CallStep> CallerTrial::Answer(directory::CallEvent event) {
    if (simulator_ == nullptr) {
        return std::nullopt;
    }
    steps_.push_back(simulator_->Answer(event));
    return steps_.back();
}

std::string CallerTrial::Transcript() const {
    std::string text;
    for (const directory::CallStep& step : steps_) {
        text += directory::StepText(step);
    }
    return text;
}

bool CallerTrial::Ended() const noexcept {
    return simulator_ != nullptr && simulator_->Ended();
}

}  // namespace dbn::session
