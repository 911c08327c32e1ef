// A call's steps as text for a person at a terminal and as JSON, one object
// a line, for scripts.
#include "directory/call_simulation.h"

#include <nlohmann/json.hpp>

namespace dbn::directory {
namespace {

std::string OutcomeText(const CallOutcome& outcome) {
    std::string text = "exit " + CallExitName(outcome.exit) + ": " + outcome.target.Text();
    if (outcome.name) {
        text += ", extension " +
                (outcome.name->extension.empty() ? std::string("none") : outcome.name->extension) +
                " (" + outcome.name->name + ")";
    }
    return text;
}

}  // namespace

std::string MatchText(const CallMatch& match) {
    return match.extension.empty() ? match.name : match.name + " " + match.extension;
}

// "first stage, Last Name: 22, 2 matches: Grace Adams 2101, Tom Baker 2102".
std::string StateText(const CallStep& step) {
    if (step.outcome) {
        return OutcomeText(*step.outcome);
    }
    std::string text = CallStageName(step.stage);
    const bool offer = step.stage == CallStage::Confirmation;
    if (offer) {
        text += ": " + std::to_string(step.matchCount) +
                (step.matchCount == 1 ? " name offered" : " names offered");
    } else if (step.digits.empty()) {
        text += ", " + step.mode + ": no digits, " + std::to_string(step.matchCount) +
                (step.matchCount == 1 ? " name" : " names");
    } else {
        text += ", " + step.mode + ": " + step.digits + ", " + std::to_string(step.matchCount) +
                (step.matchCount == 1 ? " match" : " matches");
    }
    for (std::size_t i = 0; i < step.matches.size(); ++i) {
        text += i == 0 ? ": " : ", ";
        text += (offer ? std::to_string(i + 1) + " " : std::string()) + MatchText(step.matches[i]);
    }
    const int more = step.matchCount - static_cast<int>(step.matches.size());
    if (!offer && !step.matches.empty() && more > 0) {
        text += " and " + std::to_string(more) + " more";
    }
    return text;
}

std::string StepText(const CallStep& step) {
    std::string text =
        std::to_string(step.number) + " " +
        (step.number == 0 || step.event.size() != 1 ? step.event : "key " + step.event) + "\n";
    for (const std::string& note : step.notes) {
        text += "  note: " + note + "\n";
    }
    for (const std::string& prompt : step.prompts) {
        text += "  play: " + prompt + "\n";
    }
    return text + "  " + StateText(step) + "\n";
}

std::string StepJson(const CallStep& step) {
    using Json = nlohmann::ordered_json;
    Json matches = Json::array();
    for (const CallMatch& match : step.matches) {
        matches.push_back({{"name", match.name}, {"extension", match.extension}});
    }
    Json exit = nullptr;
    if (step.outcome) {
        exit = {{"exit", CallExitName(step.outcome->exit)},
                {"target", step.outcome->target.reference},
                {"description", step.outcome->target.description}};
        if (step.outcome->name) {
            exit["name"] = step.outcome->name->name;
            exit["extension"] = step.outcome->name->extension;
        }
    }
    const Json object = {{"step", step.number},
                         {"event", step.event},
                         {"notes", step.notes},
                         {"prompts", step.prompts},
                         {"stage", CallStageName(step.stage)},
                         {"mode", step.mode},
                         {"digits", step.digits},
                         {"matchCount", step.matchCount},
                         {"matches", matches},
                         {"exit", exit}};
    return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace dbn::directory
