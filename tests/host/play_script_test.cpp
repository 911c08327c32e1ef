#include "host/play_script.h"

#include <gtest/gtest.h>

namespace dbn::host {
namespace {

std::vector<std::string> Words(std::string_view line) {
    std::string why;
    std::optional<std::vector<std::string>> words = SplitWords(line, why);
    EXPECT_TRUE(words.has_value()) << why;
    return words.value_or(std::vector<std::string>{});
}

std::string ErrorOf(std::string_view line) {
    return ParseLine(line).error;
}

TEST(PlayScriptWords, BlanksSeparateWordsAndQuotesHoldThem) {
    EXPECT_EQ(Words("  pick\tcmbNode   \"DBN 1\"  "),
              (std::vector<std::string>{"pick", "cmbNode", "DBN 1"}));
    EXPECT_EQ(Words("type txtDescription \"\""),
              (std::vector<std::string>{"type", "txtDescription", ""}));
    // A quoted part may sit inside a word.
    EXPECT_EQ(Words("a\"b c\"d e"), (std::vector<std::string>{"ab cd", "e"}));
}

TEST(PlayScriptWords, EscapesInsideQuotes) {
    EXPECT_EQ(Words(R"("say \"hi\"" "back\\slash")"),
              (std::vector<std::string>{"say \"hi\"", "back\\slash"}));
    // Other backslashes, and any outside quotes, stand for themselves.
    EXPECT_EQ(Words(R"("a\b" c\"d")"), (std::vector<std::string>{"a\\b", "c\\d"}));
}

TEST(PlayScriptWords, UnclosedQuoteIsRefused) {
    std::string why;
    EXPECT_FALSE(SplitWords("pick cmbNode \"DBN 1", why).has_value());
    EXPECT_EQ(why, "unclosed quote");
    EXPECT_FALSE(SplitWords(R"(type x "ends in \")", why).has_value());
}

TEST(PlayScriptLines, BlankAndCommentLinesAreSkipped) {
    for (std::string_view line : {"", "   \t", "# open 1 1 1", "   #\"unclosed", "\r"}) {
        ParsedLine parsed = ParseLine(line);
        EXPECT_TRUE(parsed.Skipped()) << line;
    }
    // A quoted # is a word, not a comment.
    EXPECT_EQ(ErrorOf("\"#x\""), "unknown action \"#x\"");
}

TEST(PlayScriptLines, ActionsWithTheirOperands) {
    ParsedLine open = ParseLine("open 1 -2 32767\r");
    ASSERT_TRUE(open.action);
    EXPECT_EQ(open.action->verb, Verb::Open);
    EXPECT_EQ(open.action->numbers, (std::vector<long>{1, -2, 32767}));

    ParsedLine answer = ParseLine("answer 6");
    ASSERT_TRUE(answer.action);
    EXPECT_EQ(answer.action->verb, Verb::Answer);
    EXPECT_EQ(answer.action->numbers, (std::vector<long>{6}));

    ParsedLine show = ParseLine("show GUI cmbNode LVActions");
    ASSERT_TRUE(show.action);
    EXPECT_EQ(show.action->verb, Verb::Show);
    EXPECT_EQ(show.action->operands, (std::vector<std::string>{"GUI", "cmbNode", "LVActions"}));

    ParsedLine pick = ParseLine("pick cmbAbortNode \"MSG\"");
    ASSERT_TRUE(pick.action);
    EXPECT_EQ(pick.action->verb, Verb::Pick);
    EXPECT_EQ(pick.action->operands, (std::vector<std::string>{"cmbAbortNode", "MSG"}));

    const std::pair<std::string_view, Verb> others[] = {
        {"type t x", Verb::Type}, {"click b", Verb::Click},     {"row l 1a", Verb::Row},
        {"focus c", Verb::Focus}, {"header l", Verb::Header},   {"scroll l", Verb::Scroll},
        {"close", Verb::Close},   {"entries l", Verb::Entries},
    };
    for (const auto& [line, verb] : others) {
        ParsedLine parsed = ParseLine(line);
        ASSERT_TRUE(parsed.action) << line;
        EXPECT_EQ(parsed.action->verb, verb) << line;
    }
}

TEST(PlayScriptLines, InvalidLinesSayWhy) {
    EXPECT_EQ(ErrorOf("Open 1 1 1"), "unknown action \"Open\"");
    EXPECT_EQ(ErrorOf("open 1 1"), "usage: open CONFIG PARTITION NODE");
    EXPECT_EQ(ErrorOf("close now"), "usage: close");
    EXPECT_EQ(ErrorOf("show"), "usage: show NAME...");
    EXPECT_EQ(ErrorOf("pick cmbNode"), "usage: pick CONTROL TEXT");
    EXPECT_EQ(ErrorOf("row LVActions 1a 2a"), "usage: row LISTVIEW KEY");
    EXPECT_EQ(ErrorOf("open 1 x 1"), "\"x\" is not a number");
    EXPECT_EQ(ErrorOf("open 1 1 5a"), "\"5a\" is not a number");
    EXPECT_EQ(ErrorOf("open 1 1 32768"), "\"32768\" is out of range");
    EXPECT_EQ(ErrorOf("answer \"\""), "\"\" is not a number");
    EXPECT_EQ(ErrorOf("answer 99999999999999999999"), "\"99999999999999999999\" is out of range");
    EXPECT_EQ(ErrorOf("click \"cmdOK"), "unclosed quote");
}

}  // namespace
}  // namespace dbn::host
