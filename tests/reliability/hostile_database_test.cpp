// Databases an operator may meet in the field: files that are no usable
// database, damaged schemas and stored values outside every range. Each one
// is reported in a box that says what is wrong, nothing crashes, the file is
// never "repaired" behind the operator's back, and a form that opens stays
// usable.
#include "reliability_support.h"

#include <sys/types.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace dbn::testing {
namespace {

namespace fs = std::filesystem;
using namespace form::operator_input;

// What a path holds: "missing", "folder" or the file's bytes.
std::string PathState(const std::string& path) {
    if (!fs::exists(path) || fs::is_directory(path)) {
        return fs::exists(path) ? "folder" : "missing";
    }
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::string& bytes) {
    fs::remove_all(path);
    std::ofstream(path, std::ios::binary) << bytes;
}

struct Damage;

class HostileDatabase : public EditorTest {
protected:
    void ExpectDamageNamedAndNothingWritten(const Damage& damaged);

    // Every box is the standard error message; the first one carries each of `first`.
    void ExpectOnlyErrors(std::initializer_list<std::string> first) {
        ASSERT_FALSE(services.boxes.empty());
        for (const std::string& part : first) {
            EXPECT_NE(services.boxes.front().text.find(part), std::string::npos)
                << services.boxes.front().text;
        }
        for (const ShownBox& box : services.boxes) {
            EXPECT_EQ(box.title, "Error");
            EXPECT_EQ(box.icon, form::MsgBoxIcon::Exclamation);
            EXPECT_EQ(box.text.rfind("Source: ", 0), 0u) << box.text;
            EXPECT_NE(box.text.find(" \r\nDescription: "), std::string::npos) << box.text;
        }
    }

    // Replaces the database with the demo file changed by `sql`.
    void Arrange(const std::string& sql) {
        WriteFile(root.DatabasePath(), demo_);
        root.Exec(sql);
        services.boxes.clear();
    }

    const std::string demo_ = PathState(root.DatabasePath());
};

TEST_F(HostileDatabase, AFileThatIsNoUsableDatabaseIsNamedAndLeftAsItWas) {
    const std::string path = root.DatabasePath();
    std::string noise;
    for (int i = 0; i < 8192; ++i) {
        noise.push_back(static_cast<char>((i * 7919 + 13) % 251));
    }
    const struct {
        const char* name;
        std::function<void()> make;
        std::string why;
    } files[] = {
        {"missing", [] {}, ""},
        {"Jet header",
         [&] { WriteFile(path, std::string("\0\1\0\0Standard Jet DB\0", 20) + noise); },
         "is an Access database file; it must be converted"},
        {"truncated", [&] { WriteFile(path, demo_.substr(0, demo_.size() / 2)); },
         "database disk image is malformed"},
        {"first page only", [&] { WriteFile(path, demo_.substr(0, 4096)); },
         "database disk image is malformed"},
        {"random bytes", [&] { WriteFile(path, noise); }, "is not a configuration database"},
        {"folder", [&] { fs::create_directory(path); }, "is a folder, not a database file"},
    };
    for (const auto& file : files) {
        SCOPED_TRACE(file.name);
        fs::remove_all(path);
        file.make();
        const std::string before = PathState(path);
        services.boxes.clear();

        const EditorRun run = Edit(2, 5);
        EXPECT_FALSE(run.shown || run.result);
        // One box before any form exists.
        ASSERT_EQ(services.boxes.size(), 1u);
        if (file.why.empty()) {
            EXPECT_EQ(services.boxes[0].text, "There is no configuration database at " + path +
                                                  ". Create one with: dbn-node-editor init");
        } else {
            ExpectOnlyErrors({"Source: SQLite - ShowNodeEditor \r\nDescription: ", file.why, path});
        }
        EXPECT_EQ(services.busyDepth, 0);
        EXPECT_TRUE(PathState(path) == before) << "the editor changed the file";
        EXPECT_FALSE(fs::exists(path + "-journal"));
    }
}

// A damaged schema, a stored reference the catalogue does not know, Null in
// every column or a number of matches below 1 with confirmation on (which
// selects no entry) is named by the loading step, or by the save of an edit;
// nothing is written, the edit stays, and a form that opened closes normally.
// Opens DBN 2/5 on a database damaged by `damage`: the damage is named in
// error boxes (loadError in the first), the form opens or not as `shown`
// says, a save of an edit is refused naming saveError (when given), and the
// file is left exactly as it was.
struct Damage {
    std::string damage;
    bool shown;
    std::string loadError;
    std::string saveError = {};  // empty: the operator cancels without editing
};

void HostileDatabase::ExpectDamageNamedAndNothingWritten(const Damage& damaged) {
    SCOPED_TRACE(damaged.damage);
    Arrange(damaged.damage);
    const std::string before = SavedTables();
    const EditorRun run = Edit(2, 5, [&](form::GUI& gui) {
        if (damaged.loadError.empty()) {
            EXPECT_EQ(BoxTexts("Error"), "");
        } else {
            ExpectOnlyErrors({damaged.loadError});
        }
        if (!damaged.saveError.empty()) {
            services.boxes.clear();
            ASSERT_TRUE(Type(gui.txtDescription, "Edited label"));
            ASSERT_TRUE(Press(gui.cmdApply));
            EXPECT_NE(BoxTexts("Error").find(damaged.saveError), std::string::npos)
                << BoxTexts("Error");
            ExpectEditKept(gui, "Edited label");
        }
        services.answers.push_back(form::kAnswerNo);
        EXPECT_TRUE(Press(gui.cmdCancel));
        EXPECT_FALSE(gui.IsLoaded());
    });
    EXPECT_EQ(run.shown, damaged.shown);
    if (!damaged.shown) {
        ExpectOnlyErrors({damaged.loadError});
    }
    EXPECT_TRUE(SavedTables() == before) << "the file changed";
}

const std::string kLoadData = "LoadData \r\nDescription: ";
const std::string kAssign = "AssignCustomSettingsValues \r\nDescription: ";

TEST_F(HostileDatabase, DamagedSchemasAreNamedAndNothingIsWritten) {
    const Damage cases[] = {
        // A read of the load that fails stops it before the form is filled.
        {"DROP TABLE Detail_DBN_Prompts", false, kLoadData + "no such table: Detail_DBN_Prompts"},
        // The column is missing from the row read; the save needs every
        // column and refuses before writing anything.
        {"ALTER TABLE Node_DBN DROP COLUMN MaxMatch", true, kAssign + "Item cannot be found",
         " - SaveChanges "},
        {"ALTER TABLE Node_General_Pool DROP COLUMN DateModified", true, "",
         "no such column: DateModified"},
        {"DROP TABLE Node_General_Pool", false, kLoadData + "no such table: Node_General_Pool"},
        // Found before any form exists: one box.
        {"DROP TABLE Node_DBN", false, "ShowNodeEditor \r\nDescription: no such table: Node_DBN"},
        {"DROP TABLE SR_Node_Type_Names", false,
         "LoadNodeName \r\nDescription: no such table: SR_Node_Type_Names"},
    };
    for (const Damage& damaged : cases) {
        ExpectDamageNamedAndNothingWritten(damaged);
    }
}

TEST_F(HostileDatabase, DamagedStoredValuesAreNamedAndNothingIsWritten) {
    const std::string node = " WHERE PartID = 2 AND NodeNumber = 5";
    const std::string everyColumnNull = "UPDATE Node_DBN SET " +
                                        root.QueryText(
                                            "SELECT group_concat(name || ' = NULL', ', ') FROM "
                                            "pragma_table_info('Node_DBN') WHERE pk = 0") +
                                        node;
    const Damage cases[] = {
        {everyColumnNull, false, kLoadData},
        {"UPDATE Node_DBN SET GreetingNodeType = 'BOGUS'" + node, false, kLoadData},
        {"UPDATE Node_DBN SET AbortNodeType = 'BOGUS', AbortNodeTypeID = 555" + node, false,
         kLoadData},
        {"UPDATE Node_DBN SET TimeoutNodeType = 'BOGUS'" + node, true, kAssign},
        {"UPDATE Node_DBN SET BeforePromptNodeTypeID = 555" + node, true, kAssign},
        {"UPDATE Detail_DBN_Prompts SET PromptNodeTypeID = NULL, PromptNodeType = NULL WHERE "
         "PartID = 2 AND NodeMasterID = 5",
         true, ""},
    };
    for (const Damage& damaged : cases) {
        ExpectDamageNamedAndNothingWritten(damaged);
    }
}

// Stored values beyond every range load with their fallbacks, and a save
// writes only values the editor reads back the same way; a label longer than
// the box is kept whole.
TEST_F(HostileDatabase, OutOfRangeValuesLoadWithFallbacksAndSaveInRange) {
    const std::string node = " FROM Node_DBN WHERE PartID = 2 AND NodeNumber = 5";
    root.Exec(
        "UPDATE Node_DBN SET MaxMatch = 50, Confirm = 1, DigitTimeout = -1, SelectionTimeout = "
        "-61, RetryLimit = 99, FirstMinDigits = -3, FirstMaxDigits = 10, SecondMinDigits = -1, "
        "DirectoryNodeNumber = -1, FirstLanguage = -1, SecondLanguage = 7, Method = -1, "
        "FirstMode = -1, SecondMode = 9, PlayName = -1, GreetingNodeNumber = -5, "
        "TimeoutNodeNumber = 32767, NodeDescription = printf('%.200c', 'd')" +
        node.substr(node.find(" WHERE")));
    Edit(2, 5, [&](form::GUI& gui) {
        // Told once which stored settings are shown otherwise.
        EXPECT_EQ(BoxTexts("Information"),
                  "Stored settings of DBN 5 outside their range are shown as: NodeDescription \"" +
                      std::string(200, 'd') + "\" -> \"" + std::string(30, 'd') +
                      "\"; Method -1 -> "
                      "Default Last Name; DirectoryNodeNumber -1 -> 1; FirstLanguage -1 -> None; "
                      "SecondLanguage 7 -> None; GreetingNodeNumber -5 -> 1; FirstMode -1 -> Last "
                      "Name; FirstMinDigits -3 -> 3; FirstMaxDigits 10 -> 5; SecondMode 9 -> None; "
                      "SecondMinDigits -1 -> 1; TimeoutNodeNumber 32767 -> 1; DigitTimeout -1 -> "
                      "10; SelectionTimeout -61 -> 5; RetryLimit 99 -> 1; MaxMatch 50 -> 9; "
                      "PlayName -1 -> Yes. They are kept as stored unless changed.");
        services.boxes.clear();
        const std::pair<form::ListControl*, const char*> shown[] = {
            {&gui.cmbMaxMatches, "9"},         {&gui.cmbDigitTimeOut, "10"},
            {&gui.cmbSelTimeOut, "5"},         {&gui.cmbRetryLimit, "1"},
            {&gui.cmbFirstMinDigits, "3"},     {&gui.cmbFirstMaxDigits, "5"},
            {&gui.cmbDirectory, "1"},          {&gui.cmbMethod, "Default Last Name"},
            {&gui.cmbLanguage1, "None"},       {&gui.cmbLanguage2, "None"},
            {&gui.cmbfirstMatch, "Last Name"}, {&gui.cmbsecondMatch, "None"},
            {&gui.cmbPlayName, "Yes"},         {&gui.cmbGreetingNumber, "1"},
            {&gui.cmbTimeoutNumber, "1"},
        };
        for (const auto& [list, text] : shown) {
            EXPECT_EQ(list->Text(), text) << list->Name();
        }
        EXPECT_EQ(gui.txtDescription.Text(), std::string(30, 'd'));
        // The only refusal is the operator's own: a language is needed.
        ASSERT_TRUE(Pick(gui.cmbLanguage2, 1));
        ASSERT_TRUE(Pick(gui.cmbLanguage2, 0));
        ASSERT_TRUE(Press(gui.cmdApply));
        EXPECT_EQ(BoxTexts("Information"), "Please select a language in Language 1");
        ASSERT_TRUE(Pick(gui.cmbLanguage1, 1));
        ASSERT_TRUE(Press(gui.cmdApply));
        EXPECT_FALSE(gui.cmdApply.Enabled());
    });
    EXPECT_EQ(root.QueryText("SELECT MaxMatch || ' ' || DigitTimeout || ' ' || SelectionTimeout "
                             "|| ' ' || RetryLimit || ' ' || FirstMinDigits || ' ' || "
                             "DirectoryNodeNumber || ' ' || Method || ' ' || length("
                             "NodeDescription)" +
                             node),
              "50 -1 -61 99 -3 -1 -1 200");
    // What the operator did not change is written back as stored, the label whole.
    EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 2 AND "
                             "NodeTypeID = 15 AND NodeNumber = 5"),
              std::string(200, 'd'));
}

// Runs the editor as a user who may not write the file: in a child process,
// under the "nobody" account when the tests run as root (root writes
// read-only files). The child reports what the operator saw on stderr.
TEST_F(HostileDatabase, AReadOnlyFileOpensAndRefusesTheSaveKeepingTheEdit) {
    GTEST_FLAG_SET(death_test_style, "fast");
    const std::string before = SavedTables();
    using fs::perms;
    const fs::path folder = fs::path(root.DatabasePath()).parent_path();
    // Everyone may reach and read the file; nobody may write it or its folder.
    for (fs::path dir = folder; dir.string().size() >= root.Root().size();
         dir = dir.parent_path()) {
        fs::permissions(dir, perms::owner_all | perms::others_read | perms::others_exec);
    }
    fs::permissions(folder, perms::owner_write, fs::perm_options::remove);
    fs::permissions(root.DatabasePath(), perms::owner_read | perms::others_read);

    auto operate = [&] {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
            std::fprintf(stderr, "cannot change user\n");
            std::_Exit(3);
        }
        bool applyStays = false;
        const EditorRun run = Edit(2, 5, [&](form::GUI& gui) {
            Type(gui.txtDescription, "Edited label");
            Press(gui.cmdApply);
            applyStays = gui.cmdApply.Enabled() && gui.txtDescription.Text() == "Edited label";
        });
        std::fprintf(stderr, "shown=%d applyStays=%d boxes=%zu %s%s\n", run.shown, applyStays,
                     services.boxes.size(), BoxTexts("Error").c_str(),
                     BoxTexts("Information").c_str());
        std::_Exit(0);
    };
    EXPECT_EXIT(operate(), ::testing::ExitedWithCode(0),
                // Told when the editor opens, and Apply refuses in the same words.
                "shown=1 applyStays=1 boxes=2 The configuration database \".*NewDB.mdb\" is open "
                "read-only: nobody may read it but not change it. Changes cannot be saved. \\| "
                "The configuration database \".*NewDB.mdb\" is open read-only: nobody may read "
                "it but not change it. Changes cannot be saved.");
    fs::permissions(folder, perms::owner_all);
    EXPECT_TRUE(SavedTables() == before) << "the file changed";
}

}  // namespace
}  // namespace dbn::testing
