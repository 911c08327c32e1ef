#include "qt/list_binding.h"

#include "form/controls/operator_input.h"
#include "qt/wheel_guard.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QSignalBlocker>

namespace dbn::qt {

namespace {

QString ToQt(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

ListBinding::ListBinding(form::ListControl& list, QComboBox& combo, const TwipsScale& scale)
    : ControlBinding(list, combo, scale), list_(list), combo_(combo) {
    combo.setEditable(list.IsEditable());
    combo.setMaxVisibleItems(8);
    new WheelGuard(combo);  // owned by the combo
    WatchFocus(combo);
    // An editable list whose text was written without picking an entry has
    // no current entry; its drop-down opens on the entry of that text.
    Hook(*combo.view()->window(), QEvent::Show, [this](QEvent&) {
        HighlightShownEntry();
        return false;
    });
    QObject::connect(&combo, &QComboBox::activated, Context(), [this](int index) {
        Input([this, index] { return form::operator_input::Pick(list_, index); });
    });
    if (QLineEdit* edit = combo.lineEdit()) {
        // The model keeps the entries; the combo neither adds typed texts
        // nor completes them.
        combo.setInsertPolicy(QComboBox::NoInsert);
        combo.setCompleter(nullptr);
        // When the edit field loses the focus or takes Enter, the combo would
        // pick the entry that matches the typed text on its own. The operator
        // picked nothing: the typing was already told to the model as Changes.
        QObject::disconnect(edit, &QLineEdit::editingFinished, &combo, nullptr);
        WatchFocus(*edit);
        QObject::connect(edit, &QLineEdit::textEdited, Context(), [this](const QString& text) {
            Input([this, text] { return form::operator_input::Type(list_, text.toStdString()); });
        });
    }
}

void ListBinding::Sync(form::ChangeAspect aspect) {
    switch (aspect) {
        case form::ChangeAspect::Entries:
            SyncEntries();
            break;
        case form::ChangeAspect::Selection:
            SyncSelection();
            break;
        case form::ChangeAspect::Text:
            SyncText();
            break;
        default:
            ControlBinding::Sync(aspect);
            break;
    }
}

// Entries arrive one at a time; the combo appends the new ones instead of
// refilling itself, so that long number lists stay cheap to mirror.
void ListBinding::SyncEntries() {
    const int count = list_.ListCount();
    int shown = combo_.count();
    const bool isPrefix =
        shown <= count && (shown == 0 || combo_.itemText(shown - 1) == ToQt(list_.List(shown - 1)));
    if (!isPrefix) {
        combo_.clear();
        shown = 0;
    }
    if (shown == count) {
        // Same count: a tag (or, rarely, a text) changed.
        for (int i = 0; i < count; ++i) {
            combo_.setItemText(i, ToQt(list_.List(i)));
            combo_.setItemData(i, list_.ItemData(i));
        }
    }
    for (int i = shown; i < count; ++i) {
        combo_.addItem(ToQt(list_.List(i)), list_.ItemData(i));
    }
    // Adding to an empty combo selects its first entry; the model decides.
    SyncSelection();
}

void ListBinding::SyncSelection() {
    if (combo_.currentIndex() != list_.ListIndex()) {
        combo_.setCurrentIndex(list_.ListIndex());
    }
    SyncText();
}

void ListBinding::HighlightShownEntry() {
    if (combo_.currentIndex() >= 0 || combo_.lineEdit() == nullptr) {
        return;
    }
    const int shown = combo_.findText(combo_.lineEdit()->text(), Qt::MatchFixedString);
    if (shown >= 0) {
        combo_.view()->setCurrentIndex(combo_.model()->index(shown, combo_.modelColumn()));
    }
}

void ListBinding::SyncText() {
    QLineEdit* edit = combo_.lineEdit();
    if (edit == nullptr) {
        return;
    }
    const QSignalBlocker blocker(edit);
    const QString text = ToQt(list_.Text());
    if (edit->text() != text) {
        edit->setText(text);
    }
    if (!ReceivingInput()) {
        edit->setCursorPosition(list_.SelStart());
    }
}

}  // namespace dbn::qt
