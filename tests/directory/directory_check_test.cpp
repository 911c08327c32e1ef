// The caller-search model: keypad keys, and the verdict and reason of every
// name under each kind of setting, each with a small directory built for it.
#include "directory/directory_check.h"
#include "directory/keypad_keys.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace dbn::directory {
namespace {

TEST(KeypadKeys, LettersAccentsAndOtherCharacters) {
    struct Case {
        const char* name;
        const char* letters;
        const char* digits;
    };
    const Case cases[] = {
        {"Smith", "SMITH", "76484"},
        {"abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ", "22233344455566677778889999"},
        {"O'Brien-Smythe", "OBRIENSMYTHE", "627436769843"},
        {"Van der Berg", "VANDERBERG", "8263372374"},
        {"Éloïse", "ELOISE", "356473"},
        {"Müller", "MULLER", "685537"},
        {"Ångström", "ANGSTROM", "26478766"},
        {"Straße", "STRASSE", "7872773"},
        {"Łukasz", "LUKASZ", "585279"},
        {"Ørsted", "ORSTED", "677833"},
        {"R2-D2", "R2D2", "7232"},
        {"", "", ""},
        {" -.' ", "", ""},
        {"李", "", ""},
    };
    KeypadSpeller speller;
    for (const Case& c : cases) {
        const KeypadKey key = speller.NameKey(c.name);
        EXPECT_EQ(key.letters, c.letters) << c.name;
        EXPECT_EQ(key.digits, c.digits) << c.name;
    }
    EXPECT_EQ(ExtensionKey("21-01").digits, "2101");
    EXPECT_EQ(ExtensionKey("ext. 5").digits, "5");
    EXPECT_EQ(ExtensionKey("none").digits, "");
}

// A name written "Last/First/Extension".
DirectoryName Name(int sequence, const std::string& text) {
    const std::size_t slash1 = text.find('/');
    const std::size_t slash2 = text.find('/', slash1 + 1);
    return {sequence, text.substr(0, slash1), text.substr(slash1 + 1, slash2 - slash1 - 1),
            text.substr(slash2 + 1)};
}

struct Expected {
    Verdict verdict;
    const char* digits;
    int matches;
    const char* reason;
};

struct VerdictCase {
    const char* title;
    SearchSettings settings;
    std::vector<const char*> names;
    std::vector<Expected> expected;
};

SearchSettings LastName(int min, int max, bool confirmation, int maxMatches) {
    return CustomSearch(MatchMode::LastName, min, max, 0, 1, 5, confirmation, maxMatches);
}

const VerdictCase kVerdictCases[] = {
    {"a unique name is reached directly",
     LastName(3, 5, true, 5),
     {"Smith/John/2101", "Adams/Grace/2102"},
     {{Verdict::Direct, "76484", 1, "SMITH -> 76484"},
      {Verdict::Direct, "23267", 1, "ADAMS -> 23267"}}},
    {"names sharing digits are picked among the matches; the digits stop at the maximum",
     LastName(3, 5, true, 5),
     {"Smith/Anna/1", "Smithson/Bob/2"},
     {{Verdict::Among, "76484", 2, "SMITH -> 76484, one of 2 matches"},
      {Verdict::Among, "76484", 2, "SMITH -> 76484, one of 2 matches"}}},
    {"a key shorter than the minimum, and names without letters",
     LastName(3, 5, true, 5),
     {"Li/Wei/1", "--/Anna/2", "/Bob/3"},
     {{Verdict::Unreachable, "", 0, "LI -> 54 is shorter than the minimum of 3 digits"},
      {Verdict::Unreachable, "", 0, "the last name has no letters"},
      {Verdict::Unreachable, "", 0, "the last name has no letters"}}},
    {"more names share the digits than can be offered; they are named",
     LastName(3, 5, true, 2),
     {"Smith/Anna/1", "Smith/Bob/2", "Smith/Carl/3", "Jones/Dora/4"},
     {{Verdict::Unreachable, "", 0,
       "SMITH -> 76484 matches 3 names, more than the 2 that can be offered; shared with Bob "
       "Smith, Carl Smith"},
      {Verdict::Unreachable, "", 0,
       "SMITH -> 76484 matches 3 names, more than the 2 that can be offered; shared with Anna "
       "Smith, Carl Smith"},
      {Verdict::Unreachable, "", 0,
       "SMITH -> 76484 matches 3 names, more than the 2 that can be offered; shared with Anna "
       "Smith, Bob Smith"},
      {Verdict::Direct, "56637", 1, "JONES -> 56637"}}},
    {"at most five sharing names are named",
     LastName(1, 1, true, 1),
     {"A/1/", "A/2/", "A/3/", "A/4/", "A/5/", "A/6/", "A/7/"},
     {{Verdict::Unreachable, "", 0,
       "A -> 2 matches 7 names, more than the 1 that can be offered; shared with 2 A, 3 A, 4 A, "
       "5 A, 6 A and 1 more"},
      {},
      {},
      {},
      {},
      {},
      {}}},
    {"without confirmation only a single match connects, whatever Max Matches says",
     LastName(3, 5, false, 9),
     {"Smith/Anna/1", "Smith/Bob/2", "Baker/Tom/3"},
     {{Verdict::Unreachable, "", 0,
       "SMITH -> 76484 matches 2 names, more than the single match that connects without "
       "confirmation; shared with Bob Smith"},
      {},
      {Verdict::Direct, "22537", 1, "BAKER -> 22537"}}},
    {"the second stage searches what the first leaves, by its own mode and limits",
     CustomSearch(MatchMode::LastName, 3, 5, 2, 3, 4, false, 5),
     {"Smith/Anna/1", "Smith/Anne/2", "Smith/Annabel/3", "Smith/Jo/4", "Smith//5", "Jones/Jo/6"},
     {{Verdict::Unreachable, "", 0,
       "SMITH -> 76484 leaves 5 names; then ANNA -> 2662 matches 2 of them, more than the single "
       "match that connects without confirmation; shared with Annabel Smith"},
      {Verdict::SecondStage, "76484", 5, "SMITH -> 76484 leaves 5 names; then ANNE -> 2663"},
      {Verdict::Unreachable, "", 0,
       "SMITH -> 76484 leaves 5 names; then ANNA -> 2662 matches 2 of them, more than the single "
       "match that connects without confirmation; shared with Anna Smith"},
      {Verdict::Unreachable, "", 0,
       "SMITH -> 76484 leaves 5 names; then JO -> 56 is shorter than the minimum of 3 digits"},
      {Verdict::Unreachable, "", 0,
       "SMITH -> 76484 leaves 5 names; then the first name has no letters"},
      {Verdict::Direct, "56637", 1, "JONES -> 56637"}}},
    {"with confirmation the second stage offers up to Max Matches",
     CustomSearch(MatchMode::FirstName, 2, 3, 1, 1, 2, true, 2),
     {"Smith/Anna/1", "Smyth/Anna/2", "Jones/Anna/3"},
     {{Verdict::SecondStage, "266", 3,
       "ANN -> 266 leaves 3 names; then SM -> 76, one of 2 matches"},
      {Verdict::SecondStage, "266", 3,
       "ANN -> 266 leaves 3 names; then SM -> 76, one of 2 matches"},
      {Verdict::SecondStage, "266", 3, "ANN -> 266 leaves 3 names; then JO -> 56"}}},
    {"both names: either key leads to the name, and a name matching by both counts once",
     CustomSearch(MatchMode::BothNames, 3, 5, 1, 1, 5, false, 5),
     {"Anna/Anna/1", "Smith/John/2", "Johnson/Mary/3", "Li/Bo/4", "Doe/Li/5", "Doe/Jon/6"},
     {{Verdict::Direct, "2662", 1, "ANNA -> 2662"},
      {Verdict::Direct, "76484", 1, "SMITH -> 76484"},
      {Verdict::Direct, "56467", 1, "JOHNS -> 56467"},
      {Verdict::Unreachable, "", 0,
       "LI -> 54 and BO -> 26 are shorter than the minimum of 3 digits"},
      {Verdict::Unreachable, "", 0,
       "DOE -> 363 matches 2 names, more than the single match that connects without "
       "confirmation; shared with Jon Doe"},
      {Verdict::Direct, "566", 1, "JON -> 566"}}},
    {"extension: the digits of the extension; no second stage after it",
     CustomSearch(MatchMode::Extension, 3, 4, 1, 1, 5, true, 1),
     {"Smith/Anna/2101", "Smith/Bob/21015", "Baker/Tom/", "Chen/Lena/21", "Evans/Ruth/x-3"},
     {{Verdict::Unreachable, "", 0,
       "2101 matches 2 names, more than the 1 that can be offered; shared with Bob Smith"},
      {Verdict::Unreachable, "", 0,
       "2101 matches 2 names, more than the 1 that can be offered; shared with Anna Smith"},
      {Verdict::Unreachable, "", 0, "no extension"},
      {Verdict::Unreachable, "", 0, "21 is shorter than the minimum of 3 digits"},
      {Verdict::Unreachable, "", 0, "3 is shorter than the minimum of 3 digits"}}},
    {"a minimum above the maximum allows no digits at all",
     LastName(5, 3, true, 5),
     {"Smith/Anna/1"},
     {{Verdict::Unreachable, "", 0, "no number of digits is allowed (minimum 5, maximum 3)"}}},
    {"default last name: 3 to 5 digits, five matches offered",
     DefaultLastNameSearch(),
     {"Li/A/", "Lee/A/", "Lee/B/", "Lee/C/", "Lee/D/", "Lee/E/", "Leeds/F/"},
     {{Verdict::Unreachable, "", 0, "LI -> 54 is shorter than the minimum of 3 digits"},
      {Verdict::Unreachable, "", 0,
       "LEE -> 533 matches 6 names, more than the 5 that can be offered; shared with B Lee, C "
       "Lee, D Lee, E Lee, F Leeds"},
      {},
      {},
      {},
      {},
      {Verdict::Direct, "53337", 1, "LEEDS -> 53337"}}},
};

TEST(DirectoryCheck, VerdictsAndReasons) {
    for (const VerdictCase& c : kVerdictCases) {
        SCOPED_TRACE(c.title);
        std::vector<DirectoryName> names;
        for (const char* text : c.names) {
            names.push_back(Name(static_cast<int>(names.size()) + 1, text));
        }
        const std::vector<NameVerdict> verdicts = CheckDirectory(c.settings, names);
        ASSERT_EQ(verdicts.size(), names.size());
        for (std::size_t i = 0; i < names.size(); ++i) {
            const Expected& expected = c.expected[i];
            if (expected.digits == nullptr) {
                continue;  // the same as a name before it
            }
            SCOPED_TRACE(c.names[i]);
            EXPECT_EQ(VerdictName(verdicts[i].verdict), VerdictName(expected.verdict));
            EXPECT_EQ(verdicts[i].Reachable(), expected.verdict != Verdict::Unreachable);
            EXPECT_EQ(verdicts[i].digits, expected.digits);
            EXPECT_EQ(verdicts[i].matches, expected.matches);
            EXPECT_EQ(verdicts[i].reason, expected.reason);
        }
    }
}

TEST(DirectoryCheck, EmptyDirectoryHasNoVerdicts) {
    EXPECT_TRUE(CheckDirectory(DefaultLastNameSearch(), {}).empty());
}

TEST(SearchSettings, SecondStageOnlyAfterASingleNameModeAndWhenSet) {
    struct Case {
        MatchMode first;
        int secondMode;
        std::size_t stages;
    };
    const Case cases[] = {{MatchMode::LastName, 0, 1},  {MatchMode::LastName, 2, 2},
                          {MatchMode::FirstName, 1, 2}, {MatchMode::FirstName, 3, 1},
                          {MatchMode::BothNames, 1, 1}, {MatchMode::Extension, 2, 1}};
    for (const Case& c : cases) {
        EXPECT_EQ(CustomSearch(c.first, 3, 5, c.secondMode, 1, 5, true, 5).stages.size(), c.stages)
            << MatchModeName(c.first) << " then " << c.secondMode;
    }
    EXPECT_EQ(CustomSearch(MatchMode::LastName, 3, 5, 0, 1, 5, true, 0).PickLimit(), 1);
    EXPECT_EQ(CustomSearch(MatchMode::LastName, 3, 5, 0, 1, 5, false, 7).PickLimit(), 1);
    EXPECT_EQ(DefaultLastNameSearch().PickLimit(), 5);
}

}  // namespace
}  // namespace dbn::directory
