// The Qt services: message boxes and the question dialog answered through the
// test hook, the busy cursor, and the close box asking to save.

#include "window_support.h"

#include <QKeyEvent>

#include <QAbstractButton>
#include <QProxyStyle>
#include <QPushButton>

#include <algorithm>
#include <set>

namespace dbn::testing {
namespace {

using form::MsgBoxButtons;
using form::MsgBoxIcon;

class ServicesTest : public EditorWindowTest {
protected:
    // Answers the next dialog by clicking the button with this caption (or
    // closing it when empty), noting what it showed.
    void AnswerWith(const QString& caption) {
        services.whenAsked = [this, caption](QMessageBox& box) {
            title = box.windowTitle().toStdString();
            text = box.text().toStdString();
            icon = box.icon();
            captions.clear();
            defaultCaption = box.defaultButton() ? box.defaultButton()->text().remove('&') : "";
            for (QAbstractButton* button : box.buttons()) {
                if (box.buttonRole(button) != QMessageBox::ActionRole) {  // not Show Details...
                    captions.push_back(button->text().remove('&').toStdString());
                }
            }
            for (QAbstractButton* button : box.buttons()) {
                if (button->text().remove('&') == caption) {
                    button->click();
                    return;
                }
            }
            box.reject();
        };
    }

    std::string title;
    std::string text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    std::vector<std::string> captions;
    QString defaultCaption;
};

// A style that puts pictures on standard dialog buttons, as some desktops do.
class ButtonsWithIcons : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_DialogButtonBox_ButtonsHaveIcons
                   ? 1
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

TEST_F(ServicesTest, MessageBoxesAndTheMissingNodeQuestionLookAlike) {
    const QString previous = QApplication::style()->name();
    QApplication::setStyle(new ButtonsWithIcons);  // the application owns it
    int withIcons = 0;
    services.whenAsked = [&](QMessageBox& box) {
        for (QAbstractButton* button : box.buttons()) {
            withIcons += button->icon().isNull() ? 0 : 1;
        }
        box.escapeButton()->click();
    };
    services.MsgBox("t", MsgBoxButtons::YesNoCancel, MsgBoxIcon::Question, "Confirmation");
    services.MsgBox("t", MsgBoxButtons::OK, MsgBoxIcon::Information, "Information");
    services.Confirm("MSG 12 is referenced but it does not exist.", "Confirmation");
    QApplication::setStyle(previous);
    EXPECT_EQ(withIcons, 0);
}

TEST_F(ServicesTest, MessageBoxesShowTheModelsBoxAndAnswerItsCodes) {
    AnswerWith("No");
    EXPECT_EQ(services.MsgBox("Save?\r\nNow", MsgBoxButtons::YesNoCancel, MsgBoxIcon::Question,
                              "Confirmation"),
              form::kAnswerNo);
    EXPECT_EQ(title, "Confirmation");
    EXPECT_EQ(text, "Save?\nNow");
    EXPECT_EQ(icon, QMessageBox::Question);
    EXPECT_EQ(captions.size(), 3u);

    AnswerWith("Yes");
    EXPECT_EQ(services.MsgBox("t", MsgBoxButtons::YesNoCancel, MsgBoxIcon::Question, "c"),
              form::kAnswerYes);
    AnswerWith("");  // closed
    EXPECT_EQ(services.MsgBox("t", MsgBoxButtons::YesNoCancel, MsgBoxIcon::Question, "c"),
              form::kAnswerCancel);

    AnswerWith("OK");
    EXPECT_EQ(services.MsgBox("Oops", MsgBoxButtons::OK, MsgBoxIcon::Exclamation, "Error"),
              form::kAnswerOK);
    EXPECT_EQ(icon, QMessageBox::Warning);
    EXPECT_EQ(captions, std::vector<std::string>{"OK"});
    AnswerWith("");
    EXPECT_EQ(services.MsgBox("i", MsgBoxButtons::OK, MsgBoxIcon::Information, "Information"),
              form::kAnswerOK);
    EXPECT_EQ(icon, QMessageBox::Information);
}

TEST_F(ServicesTest, TheQuestionDialogAnswersEachButtonsCode) {
    const std::pair<const char*, long> expected[] = {
        {"Yes", form::kConfirmYes},       {"Yes to All", form::kConfirmYesToAll},
        {"No", form::kConfirmNo},         {"No to All", form::kConfirmNoToAll},
        {"Cancel", form::kConfirmCancel}, {"", form::kConfirmCancel}};
    for (const auto& [caption, code] : expected) {
        AnswerWith(caption);
        EXPECT_EQ(services.Confirm("Create MSG 12?", "Missing node"), code) << caption;
    }
    EXPECT_EQ(title, "Missing node");
    EXPECT_EQ(text, "Create MSG 12?");
    std::sort(captions.begin(), captions.end());
    EXPECT_EQ(captions,
              (std::vector<std::string>{"Cancel", "No", "No to All", "Yes", "Yes to All"}));
}

// Escape, and each mnemonic, answer the missing-node question from the keyboard.
TEST_F(ServicesTest, TheQuestionDialogAnswersFromTheKeyboard) {
    const std::pair<Qt::Key, long> keys[] = {{Qt::Key_Escape, form::kConfirmCancel},
                                             {Qt::Key_Y, form::kConfirmYes},
                                             {Qt::Key_A, form::kConfirmYesToAll},
                                             {Qt::Key_N, form::kConfirmNo},
                                             {Qt::Key_O, form::kConfirmNoToAll}};
    for (const auto& [key, code] : keys) {
        services.whenAsked = [key = key](QMessageBox& box) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(&box, &press);
        };
        EXPECT_EQ(services.Confirm("MSG 12 is referenced but it does not exist.", "Confirmation"),
                  code);
    }
}

TEST_F(ServicesTest, BusyCursorIsOneOverrideCursorUntilEnded) {
    services.SetBusyCursor(true);
    services.SetBusyCursor(true);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    services.SetBusyCursor(false);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(ServicesTest, CloseBoxWithUnsavedChangesAsksAndStaysOpenOnCancel) {
    const std::string query =
        "SELECT NodeDescription FROM Node_DBN WHERE ConfigID = 1 AND PartID = 1 AND "
        "NodeTypeID = 15 AND NodeNumber = 1";
    const std::string stored = data.QueryText(query);
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        TypeKeys(WidgetOf<QLineEdit>(view, "txtDescription"), "Changed");

        AnswerWith("Cancel");
        view.close();
        EXPECT_EQ(title, "Confirmation");
        EXPECT_EQ(icon, QMessageBox::Question);
        EXPECT_TRUE(view.isVisible());
        EXPECT_TRUE(form.IsLoaded());
        EXPECT_EQ(services.ShownView(), &view);

        AnswerWith("No");
        view.close();
        EXPECT_FALSE(view.isVisible());
        EXPECT_FALSE(form.IsLoaded());
    });
    EXPECT_EQ(data.QueryText(query), stored);
    EXPECT_EQ(services.ShownView(), nullptr);
}

TEST_F(ServicesTest, CloseBoxAndEscCloseAfterTheSaveQuestionWhenChanged) {
    const std::string query =
        "SELECT NodeDescription FROM Node_DBN WHERE ConfigID = 1 AND PartID = 1 AND "
        "NodeTypeID = 15 AND NodeNumber = 1";
    const auto pressEsc = [](qt::FormView& view) {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(&view, &escape);
    };
    // Unchanged: the close box closes at once, without a question.
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        view.close();
        EXPECT_FALSE(view.isVisible());
        EXPECT_FALSE(form.IsLoaded());
    });
    EXPECT_TRUE(title.empty());
    Open(1, [&](form::GUI& form, qt::FormView& view) {
        TypeKeys(WidgetOf<QLineEdit>(view, "txtDescription"), "Escaped");
        AnswerWith("Cancel");
        pressEsc(view);
        EXPECT_EQ(text, "Do you want to save changes?");
        EXPECT_TRUE(view.isVisible() && form.IsLoaded() && form.cmdApply.Enabled());

        AnswerWith("Yes");
        pressEsc(view);
        EXPECT_FALSE(view.isVisible());
        EXPECT_FALSE(form.IsLoaded());
    });
    EXPECT_EQ(data.QueryText(query), "Escaped");
    EXPECT_TRUE(unexpectedBoxes.empty());
}

// Its buttons say what they do, and Enter gives Cancel.
TEST_F(ServicesTest, AChangeElsewhereIsAskedInTheWindowsOwnBox) {
    const std::string node1 =
        " WHERE ConfigID = 1 AND PartID = 1 AND NodeTypeID = 15 AND NodeNumber = 1";
    struct Case {
        QString button;
        const char* shown;
        const char* stored;
        bool dirty;
    };
    for (const Case& c : {Case{"Save Over It", "Mine", "Mine", false},
                          Case{"Discard My Changes", "Theirs", "Theirs", false},
                          Case{"Cancel", "Mine", "Theirs", true}}) {
        data.Exec("UPDATE Node_DBN SET NodeDescription = 'Staff directory'" + node1);
        Open(1, [&](form::GUI& form, qt::FormView& view) {
            TypeKeys(WidgetOf<QLineEdit>(view, "txtDescription"), "Mine");
            data.Exec("UPDATE Node_DBN SET NodeDescription = 'Theirs'" + node1);
            AnswerWith(c.button);
            WidgetOf<QAbstractButton>(view, "cmdApply").click();
            EXPECT_EQ(title, "Confirmation");
            EXPECT_EQ(icon, QMessageBox::Question);
            EXPECT_EQ(text,
                      "DBN 1 was changed by another program after it was opened here. Save your "
                      "changes over it?");
            EXPECT_EQ(defaultCaption, "Cancel");
            EXPECT_EQ(std::set<std::string>(captions.begin(), captions.end()),
                      (std::set<std::string>{"Save Over It", "Discard My Changes", "Cancel"}));
            EXPECT_EQ(WidgetOf<QLineEdit>(view, "txtDescription").text().toStdString(), c.shown);
            EXPECT_EQ(form.cmdApply.Enabled(), c.dirty);
            form.cmdApply.SetEnabled(false);
            view.close();
        });
        EXPECT_EQ(data.QueryText("SELECT NodeDescription FROM Node_DBN" + node1), c.stored);
    }
    EXPECT_TRUE(unexpectedBoxes.empty());
}

}  // namespace
}  // namespace dbn::testing
