// Mnemonic letters: one per caption, word starts first, earlier captions
// first, marked for the toolkit; and the fields' names for a screen reader.
#include "form/mnemonics.h"
#include "form/field_names.h"

#include <gtest/gtest.h>

#include <set>

namespace dbn::form {
namespace {

TEST(Mnemonics, EachCaptionGetsALetterOfItsOwnWordStartsFirst) {
    using Letters = std::vector<std::optional<char>>;
    EXPECT_EQ(ChooseMnemonics({"OK", "Cancel", "Apply"}), (Letters{'o', 'c', 'a'}));
    EXPECT_EQ(ChooseMnemonics({"Edit", "Edit", "Exit Prompt:"}), (Letters{'e', 'd', 'p'}));
    EXPECT_EQ(ChooseMnemonics({"Language 1:", "Language 2:"}), (Letters{'l', '2'}));
    // A later caption takes another letter rather than leave one without.
    EXPECT_EQ(ChooseMnemonics({"ab", "a"}), (Letters{'b', 'a'}));
    EXPECT_EQ(ChooseMnemonics({"a", "a", "(sec)"}), (Letters{'a', std::nullopt, 's'}));

    EXPECT_EQ(MarkMnemonic("Retry Limit:", 'l'), "Retry &Limit:");
    EXPECT_EQ(MarkMnemonic("Edit Off", 'd'), "E&dit Off");
    EXPECT_EQ(MarkMnemonic("A & B", 'b'), "A && &B");
    EXPECT_EQ(MarkMnemonic("OK", std::nullopt), "OK");
    EXPECT_EQ(MarkMnemonic("OK", 'z'), "OK");
}

TEST(FieldNames, SayTheFieldOnceEach) {
    EXPECT_EQ(FieldName("cmbGreetingNode"), "Greeting type");
    EXPECT_EQ(FieldName("cmdActionsEdit"), "Actions: Edit");
    EXPECT_EQ(FieldName("lblGreeting"), std::nullopt);
}

}  // namespace
}  // namespace dbn::form
