#pragma once

// A call through one dial-by-name node, event by event: the caller's keys
// and silences in, a step of the call out for each. The model, and what it
// assumes where a node's settings leave the runtime open, is described in
// docs/caller-simulation.md.

#include "directory/call_plan.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dbn::directory {

class StageMatcher;
struct NameKeys;

// What the caller does: a key ('0'-'9', '*', '#') or the silence that lets a
// time-out pass.
struct CallEvent {
    char key = '\0';  // '\0' for silence

    bool Silence() const noexcept { return key == '\0'; }
    // "5", "*", "silence".
    std::string Text() const;
};

// A word as an event: a single key, or "silence" (any letter case).
std::optional<CallEvent> ParseCallEvent(std::string_view word);
// Why a word is no event: "\"x\" is not a key (0-9, *, #) or \"silence\"".
std::string NotACallEvent(std::string_view word);
// Blank-separated words as events; nothing when a word is none, named in why.
std::optional<std::vector<CallEvent>> ParseCallEvents(std::string_view text, std::string& why);

enum class CallStage { FirstStage, SecondStage, Confirmation, Ended };
// "first stage", "second stage", "confirmation", "ended".
std::string CallStageName(CallStage stage);

struct CallMatch {
    std::size_t index = 0;  // position in the plan's names
    std::string name;       // "Grace Adams"
    std::string extension;
};

// The connected name of a Valid Match exit, and where each exit continues.
struct CallOutcome {
    CallExit exit = CallExit::Abort;
    CallPrompt target;
    std::optional<CallMatch> name;  // Valid Match only
};

struct CallStep {
    int number = 0;     // 0 for the start of the call
    std::string event;  // "start", or the event's text
    // What happened, in words, then the prompts played, in order.
    std::vector<std::string> notes;
    std::vector<std::string> prompts;
    // Where the call is after the step.
    CallStage stage = CallStage::FirstStage;
    std::string mode;    // the stage's match mode; empty in the confirmation and at the end
    std::string digits;  // the entry so far in a search stage
    int matchCount = 0;  // the names the entry matches, or the names offered
    std::vector<CallMatch> matches;      // the first of them, in directory order
    std::optional<CallOutcome> outcome;  // set when the call has left the node
};

// How many of the current matches a step lists.
inline constexpr std::size_t kListedMatches = 10;

class CallSimulator {
public:
    // Makes the keys and the first stage's index once; every call of this
    // simulator runs on them.
    explicit CallSimulator(CallPlan plan);
    ~CallSimulator();
    CallSimulator(const CallSimulator&) = delete;
    CallSimulator& operator=(const CallSimulator&) = delete;

    // Begins the call again: the greeting and the first stage's prompt.
    CallStep Start();
    // Answers one event. After the call has left the node nothing changes.
    CallStep Answer(CallEvent event);
    bool Ended() const noexcept { return stage_ == CallStage::Ended; }
    const CallPlan& Plan() const noexcept { return plan_; }

private:
    struct Reply;
    void Digit(char key, Reply& reply);
    void EndEntry(Reply& reply);
    void Offer(std::vector<std::uint32_t> names, Reply& reply);
    void Connect(std::size_t name, Reply& reply);
    void Fail(bool timeout, const std::string& why, Reply& reply);
    void Leave(CallExit exit);
    void EnterStage(std::size_t stage, Reply& reply);
    void PlayOffer(Reply& reply);
    CallStep Finish(Reply& reply);
    // The search stage the call is in (0 or 1), or was in last.
    std::size_t SearchIndex() const noexcept;
    const StageMatcher& Matcher() const;
    CallMatch MatchOf(std::size_t name) const;

    CallPlan plan_;
    std::vector<NameKeys> keys_;
    std::unique_ptr<StageMatcher> firstStage_;
    std::unique_ptr<StageMatcher> secondStage_;
    std::size_t secondCandidates_ = 0;  // the names the second stage searches
    CallStage stage_ = CallStage::FirstStage;
    std::string entry_;
    std::vector<std::uint32_t> offered_;
    int failures_ = 0;
    int steps_ = 0;
    std::optional<CallOutcome> outcome_;
};

// A match as the transcript names it: "Grace Adams 2101" (the name alone
// without an extension).
std::string MatchText(const CallMatch& match);
// The state of the call after a step, on one line: "first stage, Last Name:
// 22, 2 matches: Grace Adams 2101, Tom Baker 2102", or the exit taken.
std::string StateText(const CallStep& step);
// A step as text: a heading line ("3 key 4") and indented lines for the
// notes, the prompts and the state of the call after it.
std::string StepText(const CallStep& step);
// A step as one JSON object on one line.
std::string StepJson(const CallStep& step);

// Runs a whole call: the start, then each event until the call leaves the
// node (events after that are not answered).
std::vector<CallStep> SimulateCall(CallSimulator& simulator, const std::vector<CallEvent>& events);

}  // namespace dbn::directory
