/* A host written in C11: opens a node of the database under the data root
 * given as its argument, gives it a new label, saves, and opens it again to
 * check that the label was stored. Exit status 0 when it was. */
#include <cvl_dbn_node.h>

#include <stdio.h>
#include <string.h>

static const char kLabel[] = "Labelled from C";

struct host {
    int saved;
    char seen[64];
};

static int show_box(void* user, const char* text, int buttons, int icon, const char* title) {
    (void)user;
    (void)icon;
    fprintf(stderr, "box %s: %s\n", title, text);
    return buttons == CVL_DBN_BUTTONS_OK ? CVL_DBN_ANSWER_OK : CVL_DBN_ANSWER_CANCEL;
}

static long confirm(void* user, const char* text, const char* title) {
    (void)user;
    (void)text;
    (void)title;
    return CVL_DBN_CONFIRM_NO;
}

static void edit_label(void* user, cvl_dbn_form* form) {
    struct host* host = user;
    host->saved = cvl_dbn_form_type(form, "txtDescription", kLabel) == 1 &&
                  cvl_dbn_form_press(form, "cmdOK") == 1 && !cvl_dbn_form_is_open(form);
}

static void read_label(void* user, cvl_dbn_form* form) {
    struct host* host = user;
    cvl_dbn_form_text(form, "txtDescription", host->seen, sizeof host->seen);
}

int main(int argc, char** argv) {
    struct host host = {0, ""};
    cvl_dbn_callbacks callbacks;
    cvl_dbn_editor* editor;
    int shown;
    if (argc != 2) {
        fprintf(stderr, "usage: c_client DATA_ROOT\n");
        return 2;
    }
    cvl_dbn_set_data_root(argv[1]);
    memset(&callbacks, 0, sizeof callbacks);
    callbacks.user = &host;
    callbacks.msg_box = show_box;
    callbacks.confirm = confirm;
    callbacks.run_modal = edit_label;
    editor = cvl_dbn_create(&callbacks);
    if (editor == NULL) {
        fprintf(stderr, "no editor\n");
        return 1;
    }
    shown = cvl_dbn_show_node_editor(editor, 1, 1, 1);
    cvl_dbn_release(editor);

    callbacks.run_modal = read_label;
    editor = cvl_dbn_create(&callbacks);
    cvl_dbn_show_node_editor(editor, 1, 1, 1);
    cvl_dbn_release(editor);
    if (shown != CVL_DBN_SHOWN || !host.saved || strcmp(host.seen, kLabel) != 0) {
        fprintf(stderr, "shown %d, saved %d, label now \"%s\"\n", shown, host.saved, host.seen);
        return 1;
    }
    printf("label saved: %s\n", host.seen);
    return 0;
}
