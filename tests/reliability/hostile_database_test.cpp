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

std::string FileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::string& bytes) {
    fs::remove_all(path);
    std::ofstream(path, std::ios::binary) << bytes;
}

// What a path holds: "missing", "folder:<entries>" or the file's bytes.
std::string PathState(const std::string& path) {
    if (!fs::exists(path)) {
        return "missing";
    }
    if (fs::is_directory(path)) {
        return "folder:" + std::to_string(std::distance(fs::directory_iterator(path), {}));
    }
    return FileBytes(path);
}

class HostileDatabase : public EditorTest {
protected:
    // Every box is the standard error message; the first one carries `first`.
    void ExpectOnlyErrors(const std::string& first) {
        ASSERT_FALSE(services.boxes.empty());
        EXPECT_NE(services.boxes.front().text.find(first), std::string::npos)
            << services.boxes.front().text;
        for (const ShownBox& box : services.boxes) {
            EXPECT_EQ(box.title, "Error");
            EXPECT_EQ(box.icon, form::MsgBoxIcon::Exclamation);
            EXPECT_EQ(box.text.rfind("Source: ", 0), 0u) << box.text;
            EXPECT_NE(box.text.find(" \r\nDescription: "), std::string::npos) << box.text;
        }
    }

    // The operator changes the label and applies: the save is refused with
    // an error naming `why`, nothing is written, the edit and the unsaved
    // mark stay; Cancel (answering No) then closes the form.
    void ExpectRefusedSave(form::GUI& gui, const std::string& why) {
        const std::string before = SavedTables();
        services.boxes.clear();
        ASSERT_TRUE(Type(gui.txtDescription, "Edited label"));
        ASSERT_TRUE(Press(gui.cmdApply));
        EXPECT_NE(BoxTexts("Error").find(why), std::string::npos) << BoxTexts("Error");
        EXPECT_TRUE(gui.cmdApply.Enabled());
        EXPECT_TRUE(gui.Frame1.Enabled());
        EXPECT_FALSE(gui.StatusBar1.Visible());
        EXPECT_EQ(gui.txtDescription.Text(), "Edited label");
        EXPECT_TRUE(SavedTables() == before) << "the file changed";
        services.answers.push_back(form::kAnswerNo);
        EXPECT_TRUE(Press(gui.cmdCancel));
        EXPECT_FALSE(gui.IsLoaded());
    }
};

TEST_F(HostileDatabase, AFileThatIsNoUsableDatabaseIsNamedAndLeftAsItWas) {
    const std::string path = root.DatabasePath();
    const std::string demo = FileBytes(path);
    std::string noise;
    for (int i = 0; i < 8192; ++i) {
        noise.push_back(static_cast<char>((i * 7919 + 13) % 251));
    }
    const struct {
        const char* name;
        std::function<void()> make;
        std::string why;
    } files[] = {
        {"missing", [&] { fs::remove(path); }, "does not exist"},
        {"Jet header",
         [&] { WriteFile(path, std::string("\0\1\0\0Standard Jet DB\0", 20) + noise); },
         "is an Access database file; it must be converted"},
        {"truncated", [&] { WriteFile(path, demo.substr(0, demo.size() / 2)); },
         "database disk image is malformed"},
        {"first page only", [&] { WriteFile(path, demo.substr(0, 4096)); },
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
        EXPECT_FALSE(run.shown);
        EXPECT_FALSE(run.result);
        ExpectOnlyErrors("Source: SQLite - LoadNodeName \r\nDescription: ");
        ExpectOnlyErrors(file.why);
        ExpectOnlyErrors(path);
        EXPECT_EQ(services.busyDepth, 0);
        EXPECT_TRUE(PathState(path) == before) << "the editor changed the file";
        EXPECT_FALSE(fs::exists(path + "-journal"));
    }
}

TEST_F(HostileDatabase, AMissingTableOrColumnIsNamedAndNothingIsWritten) {
    const std::string demo = FileBytes(root.DatabasePath());
    const struct {
        const char* damage;
        bool shown;
        std::string loadError;
        std::string saveError;
    } schemas[] = {
        {"DROP TABLE Detail_DBN_Prompts", true,
         "AssignCustomSettingsValues \r\nDescription: no such table: Detail_DBN_Prompts",
         "no such table: Detail_DBN_Prompts"},
        // The column is missing from the row read; the save needs every
        // column and refuses before writing anything.
        {"ALTER TABLE Node_DBN DROP COLUMN MaxMatch", true,
         "AssignCustomSettingsValues \r\nDescription: Item cannot be found", " - SaveChanges "},
        {"ALTER TABLE Node_General_Pool DROP COLUMN DateModified", true, "",
         "no such column: DateModified"},
        {"DROP TABLE Node_General_Pool", false,
         "LoadData \r\nDescription: no such table: Node_General_Pool", ""},
        {"DROP TABLE Node_DBN", false,
         "LoadExistingNodesInRecordSelector \r\nDescription: no such table: Node_DBN", ""},
        {"DROP TABLE SR_Node_Type_Names", false,
         "LoadNodeName \r\nDescription: no such table: SR_Node_Type_Names", ""},
    };
    for (const auto& schema : schemas) {
        SCOPED_TRACE(schema.damage);
        WriteFile(root.DatabasePath(), demo);
        root.Exec(schema.damage);
        services.boxes.clear();

        const EditorRun run = Edit(2, 5, [&](form::GUI& gui) {
            if (schema.loadError.empty()) {
                EXPECT_TRUE(services.boxes.empty()) << BoxTexts("Error");
            } else {
                ExpectOnlyErrors(schema.loadError);
            }
            ExpectRefusedSave(gui, schema.saveError);
        });
        EXPECT_EQ(run.shown, schema.shown);
        if (!schema.shown) {
            ExpectOnlyErrors(schema.loadError);
        }
    }
}

// Stored values beyond every range load with their fallbacks, and a save
// writes only values the editor reads back the same way.
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
        EXPECT_TRUE(services.boxes.empty()) << BoxTexts("Error");
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
              "9 10 5 1 3 1 1 30");
    EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 2 AND "
                             "NodeTypeID = 15 AND NodeNumber = 5"),
              std::string(30, 'd'));
}

// A number of matches below 1 with confirmation on selects no entry; the
// save must refuse the empty value rather than store a text the next load
// cannot read, and once the operator picks a number the node saves.
TEST_F(HostileDatabase, NoNumberOfMatchesIsRefusedBySaveNotStored) {
    const std::string node = " FROM Node_DBN WHERE PartID = 2 AND NodeNumber = 5";
    for (const char* stored : {"0", "-3"}) {
        SCOPED_TRACE(stored);
        root.Exec(std::string("UPDATE Node_DBN SET Confirm = 1, MaxMatch = ") + stored +
                  " WHERE PartID = 2 AND NodeNumber = 5");
        services.boxes.clear();
        Edit(2, 5, [&](form::GUI& gui) {
            EXPECT_EQ(gui.cmbMaxMatches.ListIndex(), -1);
            const std::string before = SavedTables();
            ASSERT_TRUE(Type(gui.txtDescription, std::string("Edited ") + stored));
            ASSERT_TRUE(Press(gui.cmdApply));
            EXPECT_NE(BoxTexts("Error").find("MaxMatch"), std::string::npos) << BoxTexts("Error");
            EXPECT_TRUE(gui.cmdApply.Enabled());
            EXPECT_TRUE(SavedTables() == before) << "the file changed";

            ASSERT_TRUE(Pick(gui.cmbMaxMatches, 3));
            ASSERT_TRUE(Press(gui.cmdApply));
            EXPECT_FALSE(gui.cmdApply.Enabled());
        });
        EXPECT_EQ(root.QueryText("SELECT quote(MaxMatch) || ' ' || NodeDescription" + node),
                  std::string("4 Edited ") + stored);
    }
}

// A stored reference the catalogue does not know, or Null everywhere, stops
// loading with the standard message; a form that opened all the same closes
// normally.
TEST_F(HostileDatabase, UnknownTypesAndNullsAreReportedByTheLoadingStep) {
    const std::string keys = " WHERE PartID = 2 AND NodeNumber = 5";
    const std::string everyColumnNull = "UPDATE Node_DBN SET " +
                                        root.QueryText(
                                            "SELECT group_concat(name || ' = NULL', ', ') FROM "
                                            "pragma_table_info('Node_DBN') WHERE pk = 0") +
                                        keys;
    const std::string demo = FileBytes(root.DatabasePath());
    const struct {
        std::string update;
        bool shown;
        std::string error;
    } nodes[] = {
        {everyColumnNull, false, "LoadData \r\nDescription: "},
        {"UPDATE Node_DBN SET GreetingNodeType = 'BOGUS'" + keys, false,
         "LoadData \r\nDescription: "},
        {"UPDATE Node_DBN SET AbortNodeType = 'BOGUS', AbortNodeTypeID = 555" + keys, false,
         "LoadData \r\nDescription: "},
        {"UPDATE Node_DBN SET TimeoutNodeType = 'BOGUS'" + keys, true,
         "AssignCustomSettingsValues \r\nDescription: "},
        {"UPDATE Node_DBN SET BeforePromptNodeTypeID = 555" + keys, true,
         "AssignCustomSettingsValues \r\nDescription: "},
        {"UPDATE Detail_DBN_Prompts SET PromptNodeTypeID = NULL, PromptNodeType = NULL WHERE "
         "PartID = 2 AND NodeMasterID = 5",
         true, ""},
    };
    for (const auto& stored : nodes) {
        SCOPED_TRACE(stored.update);
        WriteFile(root.DatabasePath(), demo);
        root.Exec(stored.update);
        services.boxes.clear();
        const std::string before = SavedTables();
        bool closed = false;
        const EditorRun run = Edit(2, 5, [&](form::GUI& gui) {
            services.answers.push_back(form::kAnswerNo);
            EXPECT_TRUE(Press(gui.cmdCancel));
            closed = !gui.IsLoaded();
        });
        EXPECT_EQ(run.shown, stored.shown);
        EXPECT_EQ(closed, stored.shown);
        if (stored.error.empty()) {
            EXPECT_TRUE(services.boxes.empty()) << BoxTexts("Error");
        } else {
            ExpectOnlyErrors(stored.error);
        }
        EXPECT_TRUE(SavedTables() == before) << "the file changed";
    }
}

// Runs the editor as a user who may not write the file: in a child process,
// under the "nobody" account when the tests run as root (root writes
// read-only files). The child reports what the operator saw on stderr.
TEST_F(HostileDatabase, AReadOnlyFileOpensAndRefusesTheSaveKeepingTheEdit) {
    GTEST_FLAG_SET(death_test_style, "fast");
    const std::string before = SavedTables();
    for (fs::path dir = fs::path(root.DatabasePath()).parent_path();
         dir.string().size() >= root.Root().size(); dir = dir.parent_path()) {
        fs::permissions(dir, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec |
                                 fs::perms::others_read | fs::perms::others_exec);
    }
    fs::permissions(fs::path(root.DatabasePath()).parent_path(),
                    fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                        fs::perms::others_exec);
    fs::permissions(root.DatabasePath(), fs::perms::owner_read | fs::perms::others_read);

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
        std::fprintf(stderr, "shown=%d applyStays=%d boxes=%zu %s\n", run.shown, applyStays,
                     services.boxes.size(), BoxTexts("Error").c_str());
        std::_Exit(0);
    };
    EXPECT_EXIT(operate(), ::testing::ExitedWithCode(0),
                "shown=1 applyStays=1 boxes=1 Source: SQLite - SaveChanges \r\nDescription: The "
                "configuration database \".*NewDB.mdb\" cannot be written: the file or its "
                "folder is read-only.");
    fs::permissions(fs::path(root.DatabasePath()).parent_path(), fs::perms::owner_all);
    EXPECT_TRUE(SavedTables() == before) << "the file changed";
}

}  // namespace
}  // namespace dbn::testing
