#ifndef CVL_DBN_NODE_C_API_H
#define CVL_DBN_NODE_C_API_H

/*
 * C entry point of the dial-by-name node editor (libcvl_dbn_node.so), for a
 * host written in another language.
 *
 *   cvl_dbn_callbacks callbacks = {0};
 *   callbacks.msg_box = my_msg_box;      // required
 *   callbacks.confirm = my_confirm;      // required
 *   callbacks.run_modal = my_run_modal;  // optional, see below
 *   cvl_dbn_editor* editor = cvl_dbn_create(&callbacks);
 *   int status = cvl_dbn_show_node_editor(editor, 1, 2, 5);  // when it closes
 *   cvl_dbn_release(editor);
 *
 * Everything runs on the calling thread. No C++ exception leaves these
 * functions; errors inside the editor are reported through msg_box as the
 * editor's own "Error" boxes.
 */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Message-box buttons and icons, and the answer codes a box returns. */
enum {
    CVL_DBN_BUTTONS_OK = 0,
    CVL_DBN_BUTTONS_YES_NO_CANCEL = 1,
    CVL_DBN_ICON_INFORMATION = 0,
    CVL_DBN_ICON_EXCLAMATION = 1,
    CVL_DBN_ICON_QUESTION = 2,
    CVL_DBN_ANSWER_OK = 1,
    CVL_DBN_ANSWER_CANCEL = 2,
    CVL_DBN_ANSWER_YES = 6,
    CVL_DBN_ANSWER_NO = 7
};

/* Answers of the question whether to create a missing node. */
enum {
    CVL_DBN_CONFIRM_YES = 2,
    CVL_DBN_CONFIRM_CANCEL = 3, /* create nothing more; the node is not saved */
    CVL_DBN_CONFIRM_YES_TO_ALL = 4,
    CVL_DBN_CONFIRM_NO_TO_ALL = 5, /* create nothing more; the save goes on */
    CVL_DBN_CONFIRM_NO = 7
};

/* What cvl_dbn_show_node_editor answers. */
enum {
    CVL_DBN_SHOWN = 0,        /* the editor was shown and has closed */
    CVL_DBN_NOT_EDITABLE = 1, /* the node does not exist or cannot be edited */
    CVL_DBN_NOT_STARTED = -1  /* the editor could not start (e.g. no database) */
};

typedef struct cvl_dbn_editor cvl_dbn_editor;
/* The editor form while it is shown; valid only inside run_modal. */
typedef struct cvl_dbn_form cvl_dbn_form;

typedef struct cvl_dbn_callbacks {
    /* Passed back unchanged as the first argument of every callback. */
    void* user;
    /* Shows a message box (texts UTF-8, lines separated by CR LF) and
     * answers the button chosen: CVL_DBN_ANSWER_OK for an OK box, else YES,
     * NO or CANCEL. Required. */
    int (*msg_box)(void* user, const char* text, int buttons, int icon, const char* title);
    /* Asks whether to create a missing node; answers CVL_DBN_CONFIRM_*.
     * Required. */
    long (*confirm)(void* user, const char* text, const char* title);
    /* Shows (busy = 1) or ends (busy = 0) the busy cursor. Optional. */
    void (*set_busy_cursor)(void* user, int busy);
    /* Lets the host process pending events once. Optional. */
    void (*do_events)(void* user);
    /* The modal show. Called once the node is loaded; the host operates the
     * form through the cvl_dbn_form_* functions below (pressing OK, Cancel,
     * closing it) and returns. When it returns with the form still open, or
     * when this callback is NULL, the editor drops any unsaved change and
     * closes the form, as if the operator had abandoned it. Optional. */
    void (*run_modal)(void* user, cvl_dbn_form* form);
    /* The form has closed (it may be called from inside run_modal, when an
     * action of the host closed it). Called only after run_modal was: never
     * for a form that was not shown, nor when run_modal is NULL. Optional. */
    void (*end_modal)(void* user);
} cvl_dbn_callbacks;

/* Creates an editor (the class "CVL_DBN_Node.Business_Rules") whose boxes
 * and modal show go to the callbacks, which are copied. NULL when a required
 * callback is missing or the editor cannot be created. */
cvl_dbn_editor* cvl_dbn_create(const cvl_dbn_callbacks* callbacks);

/* Loads, fills and shows the editor for one node; returns when the form
 * closes. Every effect is in the database. Answers CVL_DBN_SHOWN (0) when
 * the editor was shown and closed, CVL_DBN_NOT_EDITABLE (1) when the node
 * does not exist or cannot be edited (the host was told in a box), and
 * CVL_DBN_NOT_STARTED (-1) when the editor could not start, for example when
 * the database could not be opened (also told in a box), or for a NULL editor. */
int cvl_dbn_show_node_editor(cvl_dbn_editor* editor, int16_t config_id, int16_t partition_id,
                             int16_t node_number);

/* Releases an editor (NULL is allowed). */
void cvl_dbn_release(cvl_dbn_editor* editor);

/* Uses DIR as the common application-data root for this process (the
 * database is DIR/Corvell/Sonavis+/Database/NewDB.mdb); NULL goes back to the
 * machine's folders. Affects editors created afterwards. The environment
 * variable DBN_DATABASE, when set, names the database instead: a PostgreSQL
 * connection URI or key/value string, or the path of an SQLite file. */
void cvl_dbn_set_data_root(const char* dir);

/* ---- Operating the shown form (inside run_modal) ----------------------
 * Controls are named as on the form (cmdOK, cmbGreetingNode, txtDescription,
 * ...). These act as the operator does: a control that cannot take input
 * (hidden or disabled) ignores it. Results: 1 done, 0 ignored, -1 no such
 * control, wrong kind of control, no such entry or the form has closed. */

/* Presses a button. */
int cvl_dbn_form_press(cvl_dbn_form* form, const char* button);
/* Picks the entry of a list whose text is `text`. */
int cvl_dbn_form_pick(cvl_dbn_form* form, const char* list, const char* text);
/* Replaces the whole text of a text field or editable list. */
int cvl_dbn_form_type(cvl_dbn_form* form, const char* control, const char* text);
/* The window's close box; 1 when the form closed, 0 when it stays open. */
int cvl_dbn_form_close(cvl_dbn_form* form);
/* 1 while the form is open, 0 once it has closed. */
int cvl_dbn_form_is_open(const cvl_dbn_form* form);
/* Copies the text of a list or text field, or the caption of a label or
 * button, into buffer (always NUL-terminated when size > 0, cut to fit) and
 * answers its full length in bytes; -1 for no such control. */
long cvl_dbn_form_text(const cvl_dbn_form* form, const char* control, char* buffer, size_t size);

#ifdef __cplusplus
}
#endif

#endif /* CVL_DBN_NODE_C_API_H */
