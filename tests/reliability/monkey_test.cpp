// Seeded random operator actions on the editor over the demo database: picks,
// typed texts (garbage and very long ones included), button presses, row
// clicks, focus changes, header presses, scrolls, navigation, the close box,
// changes to the shown node by another program, and random answers to every
// question. No exception may leave a handler,
// and after every save each dial-by-name node is consistent.
//
// DBN_MONKEY_SEED and DBN_MONKEY_ACTIONS change the seed and the number of
// actions; a failure prints the seed and the last actions to replay it.
#include "node_invariants.h"
#include "reliability_support.h"

#include <cstdlib>
#include <deque>
#include <fstream>
#include <functional>
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

// The database header's file change counter, which every commit moves on.
std::string ChangeCounter(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string counter(4, '\0');
    file.seekg(24).read(counter.data(), 4);
    return counter;
}

// Texts the monkey types besides random ones.
constexpr const char* kPlainTexts[] = {"",     "0",     "1",     "5",
                                       "9",    "12",    "99",    "100",
                                       "-1",   "32767", "32768", "99999999999999999999",
                                       "007",  " 3",    "3 ",    "1e3",
                                       "0x10", "MSG",   "NOOP",  "'; DROP TABLE Node_DBN; --"};
constexpr const char* kOddTexts[] = {
    "a\"b",         "it''s", "\t\r\n", "\xC3\xA9t\xC3\xA9", "\xE2\x9C\x93\xE2\x9C\x93",
    "\xFF\xFE\x80", "%s%n"};

class Monkey {
public:
    // changeElsewhere changes the stored node of the form from another
    // connection, as another program would.
    Monkey(unsigned seed, FakeServices& services, std::function<void(GUI&)> changeElsewhere)
        : random_(seed), services_(services), changeElsewhere_(std::move(changeElsewhere)) {}

    // One random action on the shown form; answers its description.
    std::string Act(GUI& gui) {
        TopUpAnswers();
        if (Below(300) == 0) {
            gui.Unload();  // the close box
            return "close box";
        }
        if (Below(150) == 0) {
            changeElsewhere_(gui);
            return "change elsewhere";
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
        const ControlKind is = control.Kind();
        switch (kind) {
            case 0:
            case 1:
                return is == ControlKind::ChoiceList || is == ControlKind::EditableList;
            case 2:
                return is == ControlKind::EditableList || is == ControlKind::TextField;
            case 3:
            case 4:
                return is == ControlKind::Button;
            case 6:
                return true;
            default:
                return is == ControlKind::ListView;
        }
    }

    std::string RandomText() {
        switch (const std::size_t pick = Below(4)) {
            case 0: {
                const std::size_t i = Below(std::size(kPlainTexts) + std::size(kOddTexts));
                return i < std::size(kPlainTexts) ? kPlainTexts[i]
                                                  : kOddTexts[i - std::size(kPlainTexts)];
            }
            case 1:
                return std::to_string(static_cast<long>(Below(200000)) - 100000);
            default: {  // any bytes and long, or printable and short
                const bool anyBytes = pick == 2;
                std::string text(Below(anyBytes ? 5000 : 40), ' ');
                for (char& c : text) {
                    c = static_cast<char>(anyBytes ? Below(256) : ' ' + Below(95));
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
            kConfirmYes, kConfirmYesToAll, kConfirmNoToAll, kConfirmCancel, kConfirmNo, 0, 1};
        while (services_.answers.size() < 8) {
            services_.answers.push_back(boxAnswers[Below(std::size(boxAnswers))]);
        }
        while (services_.confirmAnswers.size() < 8) {
            services_.confirmAnswers.push_back(confirmAnswers[Below(std::size(confirmAnswers))]);
        }
    }

    std::mt19937 random_;
    FakeServices& services_;
    std::function<void(GUI&)> changeElsewhere_;
};

// The one error box random input may bring up: switching the confirmation
// list's edit mode on while the list has no selected row (an empty list) stops
// the handler with error 91.
constexpr const char* kExpectedError =
    "Source: CVL_DBN_Node - cmdConfirmEdit_Click \r\nDescription: Object variable or With block "
    "variable not set";

using MonkeyTest = EditorTest;

TEST_F(MonkeyTest, RandomOperatorActionsKeepEveryNodeConsistent) {
    const unsigned seed = static_cast<unsigned>(EnvNumber("DBN_MONKEY_SEED", 20240304));
    const long total = EnvNumber("DBN_MONKEY_ACTIONS", 20000);
    Monkey monkey(seed, services, [this](GUI& gui) {
        const std::string node =
            " WHERE ConfigID = 1 AND PartID = " + std::to_string(gui.PartitionID()) +
            " AND NodeTypeID = 15 AND NodeNumber = " + std::to_string(gui.nodeNumber());
        root.Exec(
            "UPDATE Node_DBN SET NodeDescription = 'Changed elsewhere', RetryLimit = "
            "RetryLimit % 5 + 1" +
            node + "; UPDATE Node_General_Pool SET NodeDescription = 'Changed elsewhere'" + node);
    });
    std::string counter = ChangeCounter(root.DatabasePath());
    long done = 0;
    long saves = 0;
    std::string failure;             // the first one
    std::deque<std::string> recent;  // the last actions, each with the boxes it brought up
    std::size_t seenBoxes = 0;
    const auto log = [&](std::string action) {
        recent.push_back(std::move(action));
        if (recent.size() > 40) {
            recent.pop_front();
        }
    };
    const auto fail = [&](const std::string& why) {
        if (failure.empty()) {
            failure = why;
        }
    };
    const auto noteBoxes = [&] {
        for (; seenBoxes < services.boxes.size(); ++seenBoxes) {
            const ShownBox& box = services.boxes[seenBoxes];
            recent.back() += "\n    -> " + box.title + ": " + box.text;
            if (box.title == "Error" && box.text != kExpectedError) {
                fail("unexpected error: " + box.text);
            }
        }
    };
    // Live nodes of both partitions and a template.
    const std::pair<int, int> nodes[] = {{1, 1}, {1, 2}, {2, 5}, {1, 0}};

    while (done < total && failure.empty()) {
        const auto [partition, node] = nodes[monkey.Below(std::size(nodes))];
        log("open 1 " + std::to_string(partition) + " " + std::to_string(node));
        Edit(partition, node, [&](GUI& gui) {
            while (done < total && gui.IsLoaded() && failure.empty()) {
                ++done;
                try {
                    log(monkey.Act(gui));
                } catch (const std::exception& error) {
                    log("(the action threw)");
                    fail(std::string("an exception left a handler: ") + error.what());
                }
                noteBoxes();
                if (const std::string now = ChangeCounter(root.DatabasePath()); now != counter) {
                    counter = now;
                    ++saves;
                    fail(NodeInvariantViolations(root));
                }
            }
        });
        noteBoxes();
    }
    std::ostringstream replay;
    replay << "seed " << seed << ", action " << done << "; last actions:";
    for (const std::string& entry : recent) {
        replay << "\n  " << entry;
    }
    ASSERT_TRUE(failure.empty()) << failure << "\n" << replay.str();
    EXPECT_EQ(done, total);
    EXPECT_GT(saves, total / 100) << "too few saves to exercise the invariants";
}

}  // namespace
}  // namespace dbn::testing
