// The C entry point a host in another language uses.
#include "session_support.h"

#include "session/c_api.h"

namespace dbn::testing {
namespace {

struct Host {
    std::vector<std::string> boxes;
    std::string seen;
    int ended = 0;
    int answer = CVL_DBN_ANSWER_CANCEL;  // to every question
    TempDataRoot* root = nullptr;
};

cvl_dbn_callbacks Callbacks(Host& host) {
    cvl_dbn_callbacks callbacks{};
    callbacks.user = &host;
    callbacks.msg_box = [](void* user, const char* text, int, int, const char* title) {
        static_cast<Host*>(user)->boxes.push_back(std::string(title) + ": " + text);
        return static_cast<int>(CVL_DBN_ANSWER_OK);
    };
    callbacks.confirm = [](void*, const char*, const char*) { return 5L; };
    callbacks.end_modal = [](void* user) { ++static_cast<Host*>(user)->ended; };
    return callbacks;
}

TEST(CApi, TheHostOperatesTheShownFormThroughItsModalRun) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    Host host;
    cvl_dbn_callbacks callbacks = Callbacks(host);
    EXPECT_EQ(cvl_dbn_create(nullptr), nullptr);
    callbacks.confirm = nullptr;
    EXPECT_EQ(cvl_dbn_create(&callbacks), nullptr);

    callbacks = Callbacks(host);
    callbacks.run_modal = [](void* user, cvl_dbn_form* form) {
        char buffer[8];
        const long length = cvl_dbn_form_text(form, "txtDescription", buffer, sizeof buffer);
        const int typed = cvl_dbn_form_type(form, "txtDescription", "Renamed");
        const int noEntry = cvl_dbn_form_pick(form, "cmbMethod", "no such entry");
        const int applied = cvl_dbn_form_press(form, "cmdApply");
        const int again = cvl_dbn_form_press(form, "cmdApply");  // disabled after the save
        const int closed = cvl_dbn_form_press(form, "cmdOK");
        static_cast<Host*>(user)->seen =
            std::string(buffer) + "/" + std::to_string(length) + " " + std::to_string(typed) +
            std::to_string(noEntry) + std::to_string(applied) + std::to_string(again) +
            std::to_string(closed) + std::to_string(cvl_dbn_form_is_open(form));
    };
    cvl_dbn_editor* editor = cvl_dbn_create(&callbacks);
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(cvl_dbn_show_node_editor(editor, 1, 1, 1), 0);
    EXPECT_EQ(host.seen, "Staff d/15 1-11010");
    EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_DBN WHERE NodeNumber = 1"),
              "Renamed");

    // Without a modal run the form is abandoned; a missing node is told and
    // answered 1. Neither ends a modal run of the host.
    callbacks.run_modal = nullptr;
    cvl_dbn_release(editor);
    editor = cvl_dbn_create(&callbacks);
    EXPECT_EQ(cvl_dbn_show_node_editor(editor, 1, 1, 2), CVL_DBN_SHOWN);
    EXPECT_EQ(cvl_dbn_show_node_editor(editor, 1, 1, 9), CVL_DBN_NOT_EDITABLE);
    cvl_dbn_release(editor);
    EXPECT_EQ(host.ended, 1);
    EXPECT_EQ(host.boxes, std::vector<std::string>{"Information: DBN 9 doesn't exist."});
    EXPECT_EQ(cvl_dbn_show_node_editor(nullptr, 1, 1, 1), CVL_DBN_NOT_STARTED);
}

TEST(CApi, AnEditorThatCannotOpenItsDatabaseAnswersMinusOne) {
    TempDataRoot root;
    std::filesystem::remove(root.DatabasePath());
    Host host;
    cvl_dbn_callbacks callbacks = Callbacks(host);
    cvl_dbn_editor* editor = cvl_dbn_create(&callbacks);
    EXPECT_EQ(cvl_dbn_show_node_editor(editor, 1, 1, 1), CVL_DBN_NOT_STARTED);
    cvl_dbn_release(editor);
    EXPECT_EQ(host.ended, 0);
    EXPECT_FALSE(host.boxes.empty());
}

TEST(CApi, FormFunctionsRefuseWhatTheyCannotDo) {
    TempDataRoot root(TempDataRoot::Content::Demo);
    Host host;
    cvl_dbn_callbacks callbacks = Callbacks(host);
    callbacks.run_modal = [](void* user, cvl_dbn_form* form) {
        char buffer[4] = "xyz";
        const std::vector<long> results = {
            cvl_dbn_form_press(form, "cmdNothing"),
            cvl_dbn_form_press(form, "cmbNode"),  // not a button
            cvl_dbn_form_press(form, nullptr),
            cvl_dbn_form_pick(form, "cmdOK", "OK"),  // not a list
            cvl_dbn_form_pick(form, "cmbMethod", nullptr),
            cvl_dbn_form_type(form, "lblLabel", "x"),   // a label takes no typing
            cvl_dbn_form_type(form, "cmbMethod", "x"),  // nor does a choice list
            cvl_dbn_form_type(form, "txtDescription", nullptr),
            cvl_dbn_form_text(form, "cmdNothing", buffer, sizeof buffer),
            cvl_dbn_form_text(form, "lblLabel", buffer, 0),  // the length, nothing copied
            cvl_dbn_form_close(form),
            cvl_dbn_form_close(form),  // already closed
            cvl_dbn_form_press(form, "cmdOK"),
            cvl_dbn_form_text(form, "lblLabel", buffer, sizeof buffer),
            cvl_dbn_form_is_open(form),
        };
        auto& seen = static_cast<Host*>(user)->seen;
        for (const long result : results) {
            seen += std::to_string(result) + " ";
        }
        seen += buffer;
    };
    cvl_dbn_editor* editor = cvl_dbn_create(&callbacks);
    ASSERT_NE(editor, nullptr);
    cvl_dbn_show_node_editor(editor, 1, 1, 1);
    cvl_dbn_release(editor);
    EXPECT_EQ(host.seen, "-1 -1 -1 -1 -1 -1 -1 -1 -1 6 1 -1 -1 -1 0 xyz");
    EXPECT_TRUE(host.boxes.empty());
}

TEST(CApi, AChangeElsewhereIsAskedThroughTheMessageBoxCallback) {
    struct Case {
        int answer;
        const char* seen;  // the description shown after Apply
        const char* stored;
    };
    for (const Case& c :
         {Case{CVL_DBN_ANSWER_YES, "Mine", "Mine"}, Case{CVL_DBN_ANSWER_NO, "Theirs", "Theirs"},
          Case{CVL_DBN_ANSWER_CANCEL, "Mine", "Theirs"}}) {
        TempDataRoot root(TempDataRoot::Content::Demo);
        Host host;
        host.answer = c.answer;
        host.root = &root;
        cvl_dbn_callbacks callbacks = Callbacks(host);
        callbacks.msg_box = [](void* user, const char* text, int buttons, int icon,
                               const char* title) {
            auto& host = *static_cast<Host*>(user);
            host.boxes.push_back(std::string(title) + ": " + text + " " + std::to_string(buttons) +
                                 std::to_string(icon));
            return buttons == CVL_DBN_BUTTONS_YES_NO_CANCEL ? host.answer
                                                            : static_cast<int>(CVL_DBN_ANSWER_OK);
        };
        callbacks.run_modal = [](void* user, cvl_dbn_form* form) {
            auto& host = *static_cast<Host*>(user);
            cvl_dbn_form_type(form, "txtDescription", "Mine");
            host.root->Exec("UPDATE Node_DBN SET NodeDescription = 'Theirs' WHERE NodeNumber = 1");
            cvl_dbn_form_press(form, "cmdApply");
            char buffer[16];
            cvl_dbn_form_text(form, "txtDescription", buffer, sizeof buffer);
            host.seen = buffer;
        };
        cvl_dbn_editor* editor = cvl_dbn_create(&callbacks);
        cvl_dbn_show_node_editor(editor, 1, 1, 1);
        cvl_dbn_release(editor);
        EXPECT_EQ(host.boxes, std::vector<std::string>{
                                  "Confirmation: DBN 1 was changed by another program after it "
                                  "was opened here. Save your changes over it? 12"});
        EXPECT_EQ(host.seen, c.seen);
        EXPECT_EQ(root.QueryText("SELECT NodeDescription FROM Node_DBN WHERE PartID = 1 AND "
                                 "NodeNumber = 1"),
                  c.stored);
    }
}

}  // namespace
}  // namespace dbn::testing
