// Seeded random operator actions on the editor over the demo database: picks,
// typed texts (garbage and very long ones included), button presses, row
// clicks, focus changes, header presses, scrolls, navigation, the close box
// and random answers to every question. No exception may leave a handler,
// and after every save each dial-by-name node is consistent.
//
// DBN_MONKEY_SEED and DBN_MONKEY_ACTIONS change the seed and the number of
// actions; a failure prints the seed and the last actions to replay it.
#include "node_invariants.h"
#include "reliability_support.h"

#include <sqlite3.h>

#include <cstdlib>
#include <deque>
#include <random>
#include <sstream>

namespace dbn::testing {
namespace {

using namespace form;
using namespace form::operator_input;

long EnvNumber(const char* name, long fallback) {
    const char* text = std::getenv(name);
    return text != nullptr && *text != '\0' ? std::strtol(text, nullptr, 10) : fallback;
}

// Tells whether another connection committed since the last question.
class CommitWatcher {
public:
    explicit CommitWatcher(const std::string& path) {
        sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READONLY, nullptr);
        Changed();
    }
    ~CommitWatcher() { sqlite3_close(db_); }
    CommitWatcher(const CommitWatcher&) = delete;
    CommitWatcher& operator=(const CommitWatcher&) = delete;

    bool Changed() {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(db_, "PRAGMA data_version", -1, &statement, nullptr);
        long long version = -1;
        if (sqlite3_step(statement) == SQLITE_ROW) {
            version = sqlite3_column_int64(statement, 0);
        }
        sqlite3_finalize(statement);
        const bool changed = version != version_;
        version_ = version;
        return changed;
    }

private:
    sqlite3* db_ = nullptr;
    long long version_ = -1;
};

class Monkey {
public:
    Monkey(unsigned seed, FakeServices& services) : random_(seed), services_(services) {}

    // One random action on the shown form; answers its description.
    std::string Act(GUI& gui) {
        TopUpAnswers();
        if (Below(300) == 0) {
            gui.Unload();  // the close box
            return "close box";
        }
        const int kind = static_cast<int>(Below(9));
        Control* control = RandomControl(gui, kind);
        if (control == nullptr) {
            return "nothing to reach";
        }
        const std::string& name = control->Name();
        switch (kind) {
            case 0:
            case 1: {
                auto& list = static_cast<ListControl&>(*control);
                const int index = static_cast<int>(Below(list.ListCount() + 2)) - 1;
                Pick(list, index);
                return "pick " + name + " " + std::to_string(index);
            }
            case 2: {
                const std::string text = RandomText();
                if (auto* list = dynamic_cast<ListControl*>(control)) {
                    Type(*list, text);
                } else {
                    Type(static_cast<TextField&>(*control), text);
                }
                return "type " + name + " (" + std::to_string(text.size()) + " bytes)";
            }
            case 3:
            case 4:
                Press(static_cast<Button&>(*control));
                return "press " + name;
            case 5: {
                auto& list = static_cast<ListView&>(*control);
                if (list.ItemCount() == 0) {
                    return "no row in " + name;
                }
                ListItem& row = list.ItemAt(static_cast<int>(Below(list.ItemCount())));
                const std::string key = row.Key();
                ClickRow(list, row);
                return "row " + name + " " + key;
            }
            case 6:
                Focus(*control);
                return "focus " + name;
            case 7:
                PressHeader(static_cast<ListView&>(*control));
                return "header " + name;
            default:
                Scroll(static_cast<ListView&>(*control));
                return "scroll " + name;
        }
    }

    std::size_t Below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
    }

private:
    // A control of the kind an action needs, mostly among those that take
    // input, sometimes any (the input is then refused).
    Control* RandomControl(GUI& gui, int kind) {
        const bool reachableOnly = Below(10) != 0;
        std::vector<Control*> candidates;
        for (Control* control : gui.Controls()) {
            if (Fits(*control, kind) && (!reachableOnly || control->AcceptsInput())) {
                candidates.push_back(control);
            }
        }
        return candidates.empty() ? nullptr : candidates[Below(candidates.size())];
    }

    static bool Fits(const Control& control, int kind) {
        switch (kind) {
            case 0:
            case 1:
                return control.Kind() == ControlKind::ChoiceList ||
                       control.Kind() == ControlKind::EditableList;
            case 2:
                return control.Kind() == ControlKind::EditableList ||
                       control.Kind() == ControlKind::TextField;
            case 3:
            case 4:
                return control.Kind() == ControlKind::Button;
            case 6:
                return true;
            default:
                return control.Kind() == ControlKind::ListView;
        }
    }

    std::string RandomText() {
        static const char* const samples[] = {
            "",
            "0",
            "1",
            "5",
            "9",
            "12",
            "99",
            "100",
            "-1",
            "32767",
            "32768",
            "99999999999999999999",
            "007",
            " 3",
            "3 ",
            "1e3",
            "0x10",
            "MSG",
            "NOOP",
            "'; DROP TABLE Node_DBN; --",
            "a\"b",
            "it''s",
            "\t\r\n",
            "\xC3\xA9t\xC3\xA9",
            "\xE2\x9C\x93\xE2\x9C\x93",
            "\xFF\xFE\x80",
            "%s%n",
        };
        switch (Below(4)) {
            case 0:
                return samples[Below(std::size(samples))];
            case 1:
                return std::to_string(static_cast<long>(Below(200000)) - 100000);
            case 2: {
                std::string text(Below(5000), ' ');
                for (char& c : text) {
                    c = static_cast<char>(Below(256));
                }
                return text;
            }
            default: {
                std::string text(Below(40), ' ');
                for (char& c : text) {
                    c = static_cast<char>(' ' + Below(95));
                }
                return text;
            }
        }
    }

    // Every question finds an answer: yes, no or cancel for boxes, every
    // code of the creation dialog (and one it does not know) for it.
    void TopUpAnswers() {
        static constexpr int boxAnswers[] = {kAnswerYes, kAnswerNo, kAnswerCancel};
        static constexpr long confirmAnswers[] = {
            kConfirmYes, kConfirmYesToAll, kConfirmCancel, kConfirmNo, 0, 1};
        while (services_.answers.size() < 8) {
            services_.answers.push_back(boxAnswers[Below(std::size(boxAnswers))]);
        }
        while (services_.confirmAnswers.size() < 8) {
            services_.confirmAnswers.push_back(confirmAnswers[Below(std::size(confirmAnswers))]);
        }
    }

    std::mt19937 random_;
    FakeServices& services_;
};

// The one error box random input may bring up: switching the confirmation
// list's edit mode on while the list has no selected row (an empty list) stops
// the handler with error 91, as the original form did.
bool ExpectedError(const ShownBox& box) {
    return box.text ==
           "Source: CVL_DBN_Node - cmdConfirmEdit_Click \r\nDescription: Object "
           "variable or With block variable not set";
}

// The last actions with the boxes each one brought up, for the failure text.
class ActionLog {
public:
    ActionLog(unsigned seed, const FakeServices& services) : seed_(seed), services_(services) {}

    void Add(std::string action) {
        recent_.push_back(std::move(action));
        if (recent_.size() > 40) {
            recent_.pop_front();
        }
    }
    // Appends the boxes shown since the last call to the last action; answers
    // the first unexpected error box among them, if any.
    const ShownBox* NoteBoxes() {
        const ShownBox* unexpected = nullptr;
        for (; seen_ < services_.boxes.size(); ++seen_) {
            const ShownBox& box = services_.boxes[seen_];
            recent_.back() += "\n    -> " + box.title + ": " + box.text;
            if (box.title == "Error" && !ExpectedError(box) && unexpected == nullptr) {
                unexpected = &box;
            }
        }
        return unexpected;
    }
    std::string Replay(long action) const {
        std::ostringstream text;
        text << "seed " << seed_ << ", action " << action << "; last actions:";
        for (const std::string& entry : recent_) {
            text << "\n  " << entry;
        }
        return text.str();
    }

private:
    unsigned seed_;
    const FakeServices& services_;
    std::deque<std::string> recent_;
    std::size_t seen_ = 0;
};

using MonkeyTest = EditorTest;

TEST_F(MonkeyTest, RandomOperatorActionsKeepEveryNodeConsistent) {
    const unsigned seed = static_cast<unsigned>(EnvNumber("DBN_MONKEY_SEED", 20240304));
    const long total = EnvNumber("DBN_MONKEY_ACTIONS", 20000);
    Monkey monkey(seed, services);
    CommitWatcher watcher(root.DatabasePath());
    ActionLog log(seed, services);
    long done = 0;
    long saves = 0;
    bool failed = false;
    auto fail = [&](const std::string& why) {
        ADD_FAILURE() << why << "\n" << log.Replay(done);
        failed = true;
    };
    // Live nodes of both partitions and a template.
    const std::pair<int, int> nodes[] = {{1, 1}, {1, 2}, {2, 5}, {1, 0}};

    while (done < total && !failed) {
        const auto [partition, node] = nodes[monkey.Below(std::size(nodes))];
        log.Add("open 1 " + std::to_string(partition) + " " + std::to_string(node));
        Edit(partition, node, [&](GUI& gui) {
            while (done < total && gui.IsLoaded() && !failed) {
                ++done;
                try {
                    log.Add(monkey.Act(gui));
                } catch (const std::exception& error) {
                    log.Add("(the action threw)");
                    fail(std::string("an exception left a handler: ") + error.what());
                    return;
                }
                if (const ShownBox* error = log.NoteBoxes()) {
                    fail("unexpected error: " + error->text);
                }
                if (watcher.Changed()) {
                    ++saves;
                    if (const std::string broken = NodeInvariantViolations(root); !broken.empty()) {
                        fail(broken);
                    }
                }
            }
        });
        if (const ShownBox* error = log.NoteBoxes()) {
            fail("unexpected error: " + error->text);
        }
    }
    EXPECT_EQ(done, total);
    EXPECT_GT(saves, total / 100) << "too few saves to exercise the invariants";
}

}  // namespace
}  // namespace dbn::testing
