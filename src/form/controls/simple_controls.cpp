#include "form/controls/simple_controls.h"

#include "core/component_error.h"
#include "form/controls/raise_event.h"
#include "form/controls/text_rules.h"

#include <algorithm>
#include <utility>

namespace dbn::form {

TextField::TextField(std::string name, Control* container, Rect rect, int tabIndex,
                     std::string text, int maxLength, bool readOnly)
    : Control(ControlKind::TextField, std::move(name), container, rect, tabIndex),
      text_(maxLength > 0 ? FirstCharacters(text, maxLength) : std::move(text)),
      maxLength_(maxLength),
      readOnly_(readOnly) {}

void TextField::SetText(const std::string& text) {
    std::string stored = maxLength_ > 0 ? FirstCharacters(text, maxLength_) : text;
    if (stored == text_) {
        return;
    }
    text_ = std::move(stored);
    const int length = CharacterCount(text_);
    selStart_ = std::min(selStart_, length);
    selLength_ = std::min(selLength_, length - selStart_);
    NotifyChanged(ChangeAspect::Text);
    RaiseEvent(Change);
}

void TextField::SetSelStart(int position) {
    const int length = CharacterCount(text_);
    const int start = std::clamp(position, 0, length);
    // Moving the start keeps the selection inside the text.
    const int selected = std::min(selLength_, length - start);
    if (start != selStart_ || selected != selLength_) {
        selStart_ = start;
        selLength_ = selected;
        NotifyChanged(ChangeAspect::Text);
    }
}

void TextField::SetSelLength(int length) {
    const int selected = std::clamp(length, 0, CharacterCount(text_) - selStart_);
    if (selected != selLength_) {
        selLength_ = selected;
        NotifyChanged(ChangeAspect::Text);
    }
}

Label::Label(std::string name, Control* container, Rect rect, int tabIndex, std::string caption,
             FontStyle font)
    : Control(ControlKind::Label, std::move(name), container, rect, tabIndex),
      caption_(std::move(caption)),
      font_(font) {}

void Label::SetCaption(const std::string& caption) {
    if (caption_ != caption) {
        caption_ = caption;
        NotifyChanged(ChangeAspect::Caption);
    }
}

Button::Button(std::string name, Control* container, Rect rect, int tabIndex, std::string caption,
               ButtonPicture picture)
    : Control(ControlKind::Button, std::move(name), container, rect, tabIndex),
      caption_(std::move(caption)),
      picture_(picture) {}

void Button::SetCaption(const std::string& caption) {
    if (caption_ != caption) {
        caption_ = caption;
        NotifyChanged(ChangeAspect::Caption);
    }
}

Frame::Frame(std::string name, Control* container, Rect rect, int tabIndex, std::string caption,
             bool bordered)
    : Control(ControlKind::Frame, std::move(name), container, rect, tabIndex),
      caption_(std::move(caption)),
      bordered_(bordered) {}

PlainList::PlainList(std::string name, Control* container, Rect rect, int tabIndex)
    : Control(ControlKind::PlainList, std::move(name), container, rect, tabIndex) {}

void PlainList::Clear() {
    if (!entries_.empty()) {
        entries_.clear();
        NotifyChanged(ChangeAspect::Entries);
    }
}

void PlainList::AddItem(std::string text) {
    entries_.push_back(std::move(text));
    NotifyChanged(ChangeAspect::Entries);
}

const std::string& PlainList::List(int index) const {
    if (index < 0 || index >= ListCount()) {
        RaiseError(381, "Invalid property array index");
    }
    return entries_[static_cast<std::size_t>(index)];
}

int PlainList::FindExact(const std::string& text) const {
    const auto found =
        std::find_if(entries_.begin(), entries_.end(),
                     [&](const std::string& entry) { return EqualsIgnoringCase(entry, text); });
    return found == entries_.end() ? -1 : static_cast<int>(found - entries_.begin());
}

StatusBar::StatusBar(std::string name, Control* container, Rect rect, int tabIndex)
    : Control(ControlKind::StatusBar, std::move(name), container, rect, tabIndex) {}

void StatusBar::SetPanelText(const std::string& text) {
    if (panelText_ != text) {
        panelText_ = text;
        NotifyChanged(ChangeAspect::Text);
    }
}

void StatusBar::SetPanelWidth(int width) {
    if (panelWidth_ != width) {
        panelWidth_ = width;
        NotifyChanged(ChangeAspect::Geometry);
    }
}

ImageList::ImageList(std::string name)
    : Control(ControlKind::ImageList, std::move(name), nullptr, Rect{}, 0) {}

}  // namespace dbn::form
