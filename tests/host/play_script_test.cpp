#include "host/play_script.h"

#include <gtest/gtest.h>

namespace dbn::host {
namespace {

TEST(PlayScript, BlanksSeparateWordsAndQuotesHoldThemWithTheirEscapes) {
    const std::pair<std::string_view, std::vector<std::string>> lines[] = {
        {"  pick\tcmbNode   \"DBN 1\"  ", {"pick", "cmbNode", "DBN 1"}},
        {"type txtDescription \"\"", {"type", "txtDescription", ""}},
        {"a\"b c\"d e", {"ab cd", "e"}},  // a quoted part may sit inside a word
        {R"("say \"hi\"" "back\\slash")", {"say \"hi\"", "back\\slash"}},
        // Other backslashes, and any outside quotes, stand for themselves.
        {R"("a\b" c\"d")", {"a\\b", "c\\d"}},
    };
    for (const auto& [line, words] : lines) {
        std::string why;
        EXPECT_EQ(SplitWords(line, why), words) << line << ": " << why;
    }
    for (std::string_view line : {"", "   \t", "# open 1 1 1", "   #\"unclosed", "\r"}) {
        EXPECT_TRUE(ParseLine(line).Skipped()) << line;
    }

    const ParsedLine open = ParseLine("open 1 -2 32767\r");
    ASSERT_TRUE(open.action);
    EXPECT_EQ(open.action->verb, Verb::Open);
    EXPECT_EQ(open.action->numbers, (std::vector<long>{1, -2, 32767}));
    const ParsedLine show = ParseLine("show GUI cmbNode \"LVActions\"");
    ASSERT_TRUE(show.action);
    EXPECT_EQ(show.action->verb, Verb::Show);
    EXPECT_EQ(show.action->operands, (std::vector<std::string>{"GUI", "cmbNode", "LVActions"}));
}

TEST(PlayScript, InvalidLinesSayWhy) {
    const std::pair<std::string_view, std::string> lines[] = {
        {"Open 1 1 1", "unknown action \"Open\""},
        {"\"#x\"", "unknown action \"#x\""},  // a quoted # is a word, not a comment
        {"open 1 1", "usage: open CONFIG PARTITION NODE"},
        {"close now", "usage: close"},
        {"show", "usage: show NAME..."},
        {"pick cmbNode", "usage: pick CONTROL TEXT"},
        {"row LVActions 1a 2a", "usage: row LISTVIEW KEY"},
        {"open 1 x 1", "\"x\" is not a number"},
        {"open 1 1 5a", "\"5a\" is not a number"},
        {"open 1 1 32768", "\"32768\" is out of range"},
        {"answer \"\"", "\"\" is not a number"},
        {"answer 99999999999999999999", "\"99999999999999999999\" is out of range"},
        {"answer 8", "answer takes 1, 2, 3, 4, 5, 6 or 7, not 8"},
        {"answer 0", "answer takes 1, 2, 3, 4, 5, 6 or 7, not 0"},
        {"click \"cmdOK", "unclosed quote"},
        {R"(type x "ends in \")", "unclosed quote"},
    };
    for (const auto& [line, why] : lines) {
        EXPECT_EQ(ParseLine(line).error, why) << line;
    }
}

}  // namespace
}  // namespace dbn::host
