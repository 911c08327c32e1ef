#pragma once

#include "form/controls/control.h"

#include <string>
#include <vector>

namespace dbn::form {

// A text field; text longer than MaxLength (0 = no limit) is cut to it,
// whether typed or set in code. SetText raises Change only when the text differs.
class TextField : public Control {
public:
    TextField(std::string name, Control* container, Rect rect, int tabIndex, std::string text,
              int maxLength = 0, bool readOnly = false);

    const std::string& Text() const noexcept { return text_; }
    void SetText(const std::string& text);
    int MaxLength() const noexcept { return maxLength_; }
    bool ReadOnly() const noexcept { return readOnly_; }
    int SelStart() const noexcept { return selStart_; }
    int SelLength() const noexcept { return selLength_; }
    void SetSelStart(int position);
    void SetSelLength(int length);

    std::function<void()> Change;

private:
    std::string text_;
    int maxLength_;
    bool readOnly_;
    int selStart_ = 0;
    int selLength_ = 0;
};

enum class FontStyle { Regular, Bold, BoldUnderlined };

class Label : public Control {
public:
    Label(std::string name, Control* container, Rect rect, int tabIndex, std::string caption,
          FontStyle font = FontStyle::Regular);

    const std::string& Caption() const noexcept { return caption_; }
    void SetCaption(const std::string& caption);
    FontStyle Font() const noexcept { return font_; }

private:
    std::string caption_;
    FontStyle font_;
};

// The picture a navigation button carries instead of a caption.
enum class ButtonPicture { None, First, Previous, Next, Last };

class Button : public Control {
public:
    Button(std::string name, Control* container, Rect rect, int tabIndex, std::string caption,
           ButtonPicture picture = ButtonPicture::None);

    const std::string& Caption() const noexcept { return caption_; }
    void SetCaption(const std::string& caption);
    ButtonPicture Picture() const noexcept { return picture_; }
    bool IsDefault() const noexcept { return isDefault_; }
    bool IsCancel() const noexcept { return isCancel_; }
    void SetDefault(bool isDefault) noexcept { isDefault_ = isDefault; }
    void SetCancel(bool isCancel) noexcept { isCancel_ = isCancel; }

    std::function<void()> Click;

private:
    std::string caption_;
    ButtonPicture picture_;
    bool isDefault_ = false;
    bool isCancel_ = false;
};

// A container: a captioned group box, or a borderless one (empty caption
// and Bordered() false).
class Frame : public Control {
public:
    Frame(std::string name, Control* container, Rect rect, int tabIndex, std::string caption,
          bool bordered);

    const std::string& Caption() const noexcept { return caption_; }
    bool Bordered() const noexcept { return bordered_; }

private:
    std::string caption_;
    bool bordered_;
};

// A list of texts that is never shown (the required-node lists).
class PlainList : public Control {
public:
    PlainList(std::string name, Control* container, Rect rect, int tabIndex);

    void Clear();
    void AddItem(std::string text);
    int ListCount() const noexcept { return static_cast<int>(entries_.size()); }
    // Error 381 "Invalid property array index" out of range.
    const std::string& List(int index) const;
    // Index of the entry equal to text as a whole, ignoring case; -1 if none.
    int FindExact(const std::string& text) const;

private:
    std::vector<std::string> entries_;
};

class StatusBar : public Control {
public:
    StatusBar(std::string name, Control* container, Rect rect, int tabIndex);

    const std::string& PanelText() const noexcept { return panelText_; }
    void SetPanelText(const std::string& text);
    int PanelWidth() const noexcept { return panelWidth_; }
    void SetPanelWidth(int width);

private:
    std::string panelText_;
    int panelWidth_ = 0;
};

// A named store of pictures for the list views; never shown.
class ImageList : public Control {
public:
    explicit ImageList(std::string name);
};

}  // namespace dbn::form
