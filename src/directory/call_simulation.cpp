#include "directory/call_simulation.h"

#include "directory/stage_matcher.h"

#include <cctype>
#include <numeric>

namespace dbn::directory {
namespace {

std::string Plural(int count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace

std::string CallEvent::Text() const {
    return Silence() ? "silence" : std::string(1, key);
}

std::optional<CallEvent> ParseCallEvent(std::string_view word) {
    if (word.size() == 1 &&
        (std::isdigit(static_cast<unsigned char>(word[0])) || word[0] == '*' || word[0] == '#')) {
        return CallEvent{word[0]};
    }
    std::string lower(word);
    for (char& c : lower) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    if (lower == "silence") {
        return CallEvent{};
    }
    return std::nullopt;
}

std::string NotACallEvent(std::string_view word) {
    return "\"" + std::string(word) + "\" is not a key (0-9, *, #) or \"silence\"";
}

std::optional<std::vector<CallEvent>> ParseCallEvents(std::string_view text, std::string& why) {
    std::vector<CallEvent> events;
    std::size_t at = 0;
    while (at < text.size()) {
        if (std::isspace(static_cast<unsigned char>(text[at]))) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < text.size() && !std::isspace(static_cast<unsigned char>(text[end]))) {
            ++end;
        }
        const std::string_view word = text.substr(at, end - at);
        const std::optional<CallEvent> event = ParseCallEvent(word);
        if (!event) {
            why = NotACallEvent(word);
            return std::nullopt;
        }
        events.push_back(*event);
        at = end;
    }
    return events;
}

std::string CallStageName(CallStage stage) {
    switch (stage) {
        case CallStage::FirstStage:
            return "first stage";
        case CallStage::SecondStage:
            return "second stage";
        case CallStage::Confirmation:
            return "confirmation";
        case CallStage::Ended:
            return "ended";
    }
    return "ended";
}

// What one step says before the state of the call is added to it.
struct CallSimulator::Reply {
    std::string event;
    std::vector<std::string> notes;
    std::vector<std::string> prompts;
};

CallSimulator::CallSimulator(CallPlan plan)
    : plan_(std::move(plan)), keys_(MakeNameKeys(plan_.search, plan_.names)) {
    if (!plan_.search.stages.empty()) {
        std::vector<NameIndex> everyone(plan_.names.size());
        std::iota(everyone.begin(), everyone.end(), NameIndex{0});
        firstStage_ =
            std::make_unique<StageMatcher>(plan_.search.stages.front().mode, keys_, everyone);
    }
}

CallSimulator::~CallSimulator() = default;

CallStep CallSimulator::Start() {
    steps_ = 0;
    failures_ = 0;
    outcome_.reset();
    offered_.clear();
    secondStage_.reset();
    Reply reply{"start", {}, {plan_.greeting.Text()}};
    if (plan_.names.empty()) {
        reply.notes.push_back("the directory has no names");
        Leave(CallExit::Abort);
    } else if (plan_.search.stages.empty()) {
        Leave(CallExit::Abort);
    } else {
        EnterStage(0, reply);
    }
    return Finish(reply);
}

CallStep CallSimulator::Answer(CallEvent event) {
    Reply reply{event.Text(), {}, {}};
    if (Ended()) {
        reply.notes.push_back("the call has left the node");
        return Finish(reply);
    }
    const bool entryEmpty = stage_ == CallStage::Confirmation || entry_.empty();
    if (event.key == '*') {
        Leave(CallExit::Star);
    } else if (event.key == '#') {
        Leave(CallExit::Pound);
    } else if (event.key == '0' && entryEmpty) {
        Leave(CallExit::Zero);
    } else if (stage_ == CallStage::Confirmation) {
        const auto position = static_cast<std::size_t>(event.key - '0');
        if (event.Silence()) {
            Fail(true,
                 "no choice before the selection time-out of " +
                     Plural(plan_.selectionTimeout, "second", "seconds"),
                 reply);
        } else if (position < 1 || position > offered_.size()) {
            Fail(false, "no name is offered at " + event.Text(), reply);
        } else {
            reply.notes.push_back("picked " + event.Text());
            Connect(offered_[position - 1], reply);
        }
    } else if (!event.Silence()) {
        Digit(event.key, reply);
    } else if (entry_.empty()) {
        Fail(true,
             "no digits before the digit time-out of " +
                 Plural(plan_.digitTimeout, "second", "seconds"),
             reply);
    } else {
        const SearchStage& stage = plan_.search.stages[SearchIndex()];
        if (static_cast<int>(entry_.size()) < stage.minDigits) {
            Fail(false,
                 entry_ + " is shorter than the minimum of " + std::to_string(stage.minDigits) +
                     " digits",
                 reply);
        } else {
            EndEntry(reply);
        }
    }
    return Finish(reply);
}

void CallSimulator::Digit(char key, Reply& reply) {
    entry_ += key;
    const SearchStage& stage = plan_.search.stages[SearchIndex()];
    if (static_cast<int>(entry_.size()) >= stage.maxDigits || entry_.size() >= kIndexedDigits) {
        EndEntry(reply);
    }
}

// The entry is complete: the matches decide where the call goes.
void CallSimulator::EndEntry(Reply& reply) {
    const StageMatcher& matcher = Matcher();
    const int count = matcher.Count(entry_);
    const bool first = stage_ == CallStage::FirstStage;
    if (count == 0) {
        Fail(false, entry_ + " matches no name", reply);
        return;
    }
    if (count <= plan_.search.PickLimit()) {
        reply.notes.push_back(entry_ + " matches " + Plural(count, "name", "names"));
        std::vector<NameIndex> names = matcher.Matches(entry_);
        if (plan_.search.confirmation) {
            Offer(std::move(names), reply);
        } else {
            Connect(names.front(), reply);
        }
        return;
    }
    if (first && plan_.search.stages.size() > 1) {
        reply.notes.push_back(entry_ + " leaves " + std::to_string(count) +
                              " names; the second stage searches them");
        const std::vector<NameIndex> left = matcher.Matches(entry_);
        secondCandidates_ = left.size();
        secondStage_ = std::make_unique<StageMatcher>(plan_.search.stages[1].mode, keys_, left);
        EnterStage(1, reply);
        return;
    }
    Fail(false,
         entry_ + " matches " + std::to_string(count) + (first ? " names, " : " of them, ") +
             TooManyMatches(plan_.search),
         reply);
}

void CallSimulator::EnterStage(std::size_t stage, Reply& reply) {
    stage_ = stage == 0 ? CallStage::FirstStage : CallStage::SecondStage;
    entry_.clear();
    const SearchStage& settings = plan_.search.stages[stage];
    if (!settings.AllowsDigits()) {
        reply.notes.push_back(NoDigitsAllowed(settings));
        Leave(CallExit::Abort);
        return;
    }
    if (stage < plan_.stagePrompts.size()) {
        reply.prompts.push_back(plan_.stagePrompts[stage].Text());
    }
}

void CallSimulator::Offer(std::vector<NameIndex> names, Reply& reply) {
    stage_ = CallStage::Confirmation;
    entry_.clear();
    offered_ = std::move(names);
    PlayOffer(reply);
}

void CallSimulator::PlayOffer(Reply& reply) {
    reply.prompts.push_back(plan_.beforeNames.Text());
    for (std::size_t i = 0; i < offered_.size(); ++i) {
        const CallPrompt prompt =
            i < plan_.namePrompts.size() ? plan_.namePrompts[i] : CallPrompt{"none", ""};
        reply.prompts.push_back(prompt.Text() + " for " + std::to_string(i + 1) + ": " +
                                DisplayName(plan_.names[offered_[i]]));
    }
    reply.prompts.push_back(plan_.afterNames.Text());
}

void CallSimulator::Connect(std::size_t name, Reply& reply) {
    if (plan_.playName) {
        reply.prompts.push_back("the name \"" + DisplayName(plan_.names[name]) + "\"");
    }
    Leave(CallExit::ValidMatch);
    outcome_->name = MatchOf(name);
}

// An invalid entry or a time-out: the caller tries again while retries are
// left; after the last the call leaves by the kind of failure.
void CallSimulator::Fail(bool timeout, const std::string& why, Reply& reply) {
    reply.notes.push_back(why);
    ++failures_;
    if (failures_ > plan_.retryLimit) {
        reply.notes.push_back("no retry left (limit " + std::to_string(plan_.retryLimit) + ")");
        if (stage_ == CallStage::Confirmation) {
            Leave(CallExit::ConfirmationExit);
        } else {
            Leave(timeout ? CallExit::Timeout : CallExit::Invalid);
        }
        return;
    }
    reply.notes.push_back("retry " + std::to_string(failures_) + " of " +
                          std::to_string(plan_.retryLimit));
    if (stage_ == CallStage::Confirmation) {
        PlayOffer(reply);
    } else {
        EnterStage(SearchIndex(), reply);
    }
}

void CallSimulator::Leave(CallExit exit) {
    stage_ = CallStage::Ended;
    entry_.clear();
    offered_.clear();
    outcome_ = CallOutcome{exit, plan_.Target(exit), std::nullopt};
}

std::size_t CallSimulator::SearchIndex() const noexcept {
    return stage_ == CallStage::SecondStage ? 1 : 0;
}

const StageMatcher& CallSimulator::Matcher() const {
    return stage_ == CallStage::SecondStage ? *secondStage_ : *firstStage_;
}

CallMatch CallSimulator::MatchOf(std::size_t name) const {
    const DirectoryName& entry = plan_.names[name];
    return {name, DisplayName(entry), entry.extension};
}

CallStep CallSimulator::Finish(Reply& reply) {
    CallStep step;
    step.number = steps_++;
    step.event = std::move(reply.event);
    step.notes = std::move(reply.notes);
    step.prompts = std::move(reply.prompts);
    step.stage = stage_;
    step.outcome = outcome_;
    if (stage_ == CallStage::Confirmation) {
        step.matchCount = static_cast<int>(offered_.size());
        for (NameIndex name : offered_) {
            step.matches.push_back(MatchOf(name));
        }
    } else if (stage_ != CallStage::Ended) {
        const bool first = stage_ == CallStage::FirstStage;
        step.mode = MatchModeName(plan_.search.stages[SearchIndex()].mode);
        step.digits = entry_;
        if (entry_.empty()) {
            step.matchCount = static_cast<int>(first ? plan_.names.size() : secondCandidates_);
        } else {
            step.matchCount = Matcher().Count(entry_);
            for (NameIndex name : Matcher().First(entry_, kListedMatches)) {
                step.matches.push_back(MatchOf(name));
            }
        }
    }
    return step;
}

std::vector<CallStep> SimulateCall(CallSimulator& simulator, const std::vector<CallEvent>& events) {
    std::vector<CallStep> steps{simulator.Start()};
    for (const CallEvent& event : events) {
        if (simulator.Ended()) {
            break;
        }
        steps.push_back(simulator.Answer(event));
    }
    return steps;
}

}  // namespace dbn::directory
