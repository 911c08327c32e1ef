#include "qt/accessible_names.h"

#include "form/controls/simple_controls.h"
#include "form/field_names.h"
#include "form/mnemonics.h"
#include "qt/simple_bindings.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>
#include <cctype>
#include <map>
#include <string_view>

namespace dbn::qt {
namespace {

bool IsInput(const form::Control& control) {
    return control.Kind() == form::ControlKind::ChoiceList ||
           control.Kind() == form::ControlKind::EditableList ||
           control.Kind() == form::ControlKind::TextField;
}

// "Greeting:" and "&Label:" are named "Greeting" and "Label".
QString CaptionName(const std::string& caption) {
    QString name = QString::fromStdString(caption);
    name.remove('&');
    if (name.endsWith(':')) {
        name.chop(1);
    }
    return name.trimmed();
}

// "cmbSecondMinDigits" -> "Second Min Digits": the kind prefix dropped and
// the words split where a capital letter begins one.
QString NameInWords(const std::string& controlName) {
    std::string_view rest = controlName;
    for (std::string_view prefix : {"cmb", "cmd", "txt", "lbl", "fra", "lst", "LV"}) {
        if (rest.size() > prefix.size() && rest.substr(0, prefix.size()) == prefix) {
            rest.remove_prefix(prefix.size());
            break;
        }
    }
    std::string words;
    for (std::size_t i = 0; i < rest.size(); ++i) {
        const auto c = static_cast<unsigned char>(rest[i]);
        if (i > 0 && std::isupper(c) && !std::isupper(static_cast<unsigned char>(rest[i - 1]))) {
            words += ' ';
        }
        words += static_cast<char>(i == 0 ? std::toupper(c) : c);
    }
    return QString::fromStdString(words);
}

// True when a field lies left or right of a label on its line: a column
// title above inputs is not beside them.
bool Beside(const QWidget& label, const QWidget& field) {
    const QRect text = label.geometry();
    const QRect box = field.geometry();
    const int shared = std::min(text.bottom(), box.bottom()) - std::max(text.y(), box.y());
    return label.parentWidget() == field.parentWidget() && shared >= text.height() / 2 &&
           (box.x() > text.right() || box.right() < text.x());
}

QString ButtonName(const form::Button& button) {
    switch (button.Picture()) {
        case form::ButtonPicture::First:
            return QStringLiteral("First");
        case form::ButtonPicture::Previous:
            return QStringLiteral("Previous");
        case form::ButtonPicture::Next:
            return QStringLiteral("Next");
        case form::ButtonPicture::Last:
            return QStringLiteral("Last");
        case form::ButtonPicture::None:
            break;
    }
    return CaptionName(button.Caption());
}

// The input that comes next in the tab order in the same container, when it
// lies beside the label.
const ControlBinding* NamedInput(const std::vector<const ControlBinding*>& byTab,
                                 std::size_t label) {
    const form::Control& control = byTab[label]->Control();
    for (std::size_t next = label + 1; next < byTab.size(); ++next) {
        const form::Control& candidate = byTab[next]->Control();
        if (candidate.Container() != control.Container()) {
            continue;
        }
        const bool named =
            IsInput(candidate) && Beside(*byTab[label]->Widget(), *byTab[next]->Widget());
        return named ? byTab[next] : nullptr;
    }
    return nullptr;
}

// The nearest input beside a label.
QWidget* InputBeside(const std::vector<const ControlBinding*>& bindings,
                     const ControlBinding& label) {
    const QWidget* widget = label.Widget();
    QWidget* nearest = nullptr;
    int distance = 0;
    for (const ControlBinding* binding : bindings) {
        QWidget* other = binding->Widget();
        if (!IsInput(binding->Control()) || !Beside(*widget, *other)) {
            continue;
        }
        const int gap = std::abs(other->geometry().center().x() - widget->geometry().center().x());
        if (nearest == nullptr || gap < distance) {
            nearest = other;
            distance = gap;
        }
    }
    return nearest;
}

// Letters for the labels with a field, then OK, Cancel and Apply, then the
// other captions, then the other buttons, then the last captions; answers
// the other and the last captions marked.
std::vector<QString> GiveMnemonics(const std::vector<const ControlBinding*>& byTab,
                                   const std::vector<std::string>& otherCaptions,
                                   const std::vector<std::string>& lastCaptions) {
    struct Owner {
        std::string caption;
        ControlBinding* binding;  // nullptr: one of the other captions
    };
    std::vector<Owner> labels;
    std::vector<Owner> commit;
    std::vector<Owner> buttons;
    for (const ControlBinding* binding : byTab) {
        auto* owner = const_cast<ControlBinding*>(binding);
        const auto* label = dynamic_cast<const QLabel*>(binding->Widget());
        const auto* button = dynamic_cast<const form::Button*>(&binding->Control());
        if (label != nullptr && label->buddy() != nullptr) {
            labels.push_back(
                {static_cast<const form::Label&>(binding->Control()).Caption(), owner});
        } else if (button != nullptr && button->Picture() == form::ButtonPicture::None) {
            const std::string& name = button->Name();
            const bool isCommit = name == "cmdOK" || name == "cmdCancel" || name == "cmdApply";
            (isCommit ? commit : buttons).push_back({button->Caption(), owner});
        }
    }
    std::vector<Owner> owners = std::move(labels);
    owners.insert(owners.end(), commit.begin(), commit.end());
    for (const std::string& caption : otherCaptions) {
        owners.push_back({caption, nullptr});
    }
    owners.insert(owners.end(), buttons.begin(), buttons.end());
    for (const std::string& caption : lastCaptions) {
        owners.push_back({caption, nullptr});
    }
    std::vector<std::string> captions;
    for (const Owner& owner : owners) {
        captions.push_back(owner.caption);
    }
    const std::vector<std::optional<char>> letters = form::ChooseMnemonics(captions);
    std::vector<QString> marked;
    for (std::size_t i = 0; i < owners.size(); ++i) {
        if (owners[i].binding == nullptr) {
            marked.push_back(QString::fromStdString(form::MarkMnemonic(captions[i], letters[i])));
        } else if (auto* label = dynamic_cast<LabelBinding*>(owners[i].binding)) {
            label->SetMnemonic(letters[i]);
        } else if (auto* button = dynamic_cast<ButtonBinding*>(owners[i].binding)) {
            button->SetMnemonic(letters[i]);
        }
    }
    return marked;
}

}  // namespace

std::vector<QString> NameControls(const std::vector<std::unique_ptr<ControlBinding>>& bindings,
                                  const std::vector<std::string>& otherCaptions,
                                  const std::vector<std::string>& lastCaptions) {
    std::vector<const ControlBinding*> byTab;
    for (const auto& binding : bindings) {
        byTab.push_back(binding.get());
    }
    std::stable_sort(byTab.begin(), byTab.end(), [](const auto* a, const auto* b) {
        return a->Control().TabIndex() < b->Control().TabIndex();
    });
    std::map<const form::Control*, QString> frameCaptions;
    for (const ControlBinding* binding : byTab) {
        if (const auto* frame = dynamic_cast<const form::Frame*>(&binding->Control())) {
            frameCaptions[frame] = CaptionName(frame->Caption());
        }
    }

    for (std::size_t i = 0; i < byTab.size(); ++i) {
        const ControlBinding& binding = *byTab[i];
        auto* label = dynamic_cast<const form::Label*>(&binding.Control());
        auto* labelBinding = dynamic_cast<LabelBinding*>(const_cast<ControlBinding*>(&binding));
        if (label == nullptr || labelBinding == nullptr) {
            continue;
        }
        if (const ControlBinding* input = NamedInput(byTab, i)) {
            static_cast<QLabel*>(binding.Widget())->setBuddy(input->Widget());
            input->Widget()->setAccessibleName(CaptionName(label->Caption()));
            labelBinding->AlignWith(*input->Widget());
        } else if (QWidget* beside = InputBeside(byTab, binding)) {
            labelBinding->AlignWith(*beside);
        }
    }

    for (const ControlBinding* binding : byTab) {
        QWidget* widget = binding->Widget();
        const form::Control& control = binding->Control();
        if (const std::optional<std::string> field = form::FieldName(control.Name())) {
            widget->setAccessibleName(QString::fromStdString(*field));
        }
        if (auto* combo = qobject_cast<QComboBox*>(widget); combo && combo->lineEdit()) {
            combo->lineEdit()->setAccessibleName(widget->accessibleName());
        }
        if (!widget->accessibleName().isEmpty()) {
            continue;
        }
        QString name;
        if (const auto* button = dynamic_cast<const form::Button*>(&control)) {
            name = ButtonName(*button);
        } else if (control.Kind() == form::ControlKind::ListView) {
            const auto frame = frameCaptions.find(control.Container());
            if (frame != frameCaptions.end()) {
                name = frame->second;
            }
        } else if (const auto* frame = dynamic_cast<const form::Frame*>(&control)) {
            name = CaptionName(frame->Caption());
        } else if (const auto* text = dynamic_cast<const form::Label*>(&control)) {
            name = CaptionName(text->Caption());
        }
        widget->setAccessibleName(name.isEmpty() ? NameInWords(control.Name()) : name);
    }
    return GiveMnemonics(byTab, otherCaptions, lastCaptions);
}

}  // namespace dbn::qt
