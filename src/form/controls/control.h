#pragma once

#include <functional>
#include <string>
#include <vector>

namespace dbn::form {

// Position and size in twips (1/1440 inch), relative to the container.
struct Rect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

enum class ControlKind {
    ChoiceList,    // drop-down list the operator can only pick from
    EditableList,  // drop-down list with an edit field
    TextField,
    Label,
    Button,
    Frame,
    ListView,
    PlainList,  // hidden list of texts
    StatusBar,
    ImageList,
};

// What changed, so that a view can update only that.
enum class ChangeAspect {
    State,      // visible, enabled
    Geometry,   // left, top, width, height
    Caption,    // caption of a label, button or frame
    Text,       // text of a list, text field or status panel
    Entries,    // entries of a list (added, cleared, tags)
    Selection,  // selected entry or row
    Columns,    // list-view columns and display settings
    Rows,       // list-view rows and cells
    Focus,
};

class Control;
class FocusScope;

using ChangeObserver = std::function<void(Control&, ChangeAspect)>;

// What every control has: a name, a kind, a container, a position, a tab
// index, visible and enabled states, a GotFocus event and a change
// notification that a view observes.
class Control {
public:
    Control(ControlKind kind, std::string name, Control* container, Rect rect, int tabIndex);
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    ControlKind Kind() const noexcept { return kind_; }
    const std::string& Name() const noexcept { return name_; }
    Control* Container() const noexcept { return container_; }
    int TabIndex() const noexcept { return tabIndex_; }

    int Left() const noexcept { return rect_.left; }
    int Top() const noexcept { return rect_.top; }
    int Width() const noexcept { return rect_.width; }
    int Height() const noexcept { return rect_.height; }
    const Rect& Bounds() const noexcept { return rect_; }
    void SetLeft(int left);
    void SetTop(int top);
    void SetWidth(int width);
    void SetHeight(int height);

    bool Visible() const noexcept { return visible_; }
    bool Enabled() const noexcept { return enabled_; }
    void SetVisible(bool visible);
    void SetEnabled(bool enabled);

    // Visible and enabled, and so is every container: the operator can reach it.
    bool AcceptsInput() const;

    // Gives this control the focus from code. A control that cannot take
    // input (hidden or disabled, itself or a container) raises error 5
    // "Invalid procedure call or argument". Raises GotFocus when the focus
    // was elsewhere.
    void SetFocus();
    bool HasFocus() const;

    // Raised when the control receives the focus it did not have.
    std::function<void()> GotFocus;

    // Set when the operator's own input changed the control's value (a
    // value set by code leaves it); the form clears it after a load or a
    // save, so that a save writes the stored value of what was not changed.
    bool ChangedByOperator() const noexcept { return changedByOperator_; }
    void SetChangedByOperator(bool changed) noexcept { changedByOperator_ = changed; }

    // Change notification for views. Answers a handle for Unobserve.
    int Observe(ChangeObserver observer);
    void Unobserve(int handle);

    void AttachFocusScope(FocusScope* scope) noexcept { focusScope_ = scope; }

protected:
    void NotifyChanged(ChangeAspect aspect);

private:
    ControlKind kind_;
    std::string name_;
    Control* container_;
    Rect rect_;
    int tabIndex_;
    bool visible_ = true;
    bool enabled_ = true;
    bool changedByOperator_ = false;
    FocusScope* focusScope_ = nullptr;
    std::vector<std::pair<int, ChangeObserver>> observers_;
    int nextObserver_ = 1;

    friend class FocusScope;
};

// Which control of a form has the focus.
class FocusScope {
public:
    Control* Focused() const noexcept { return focused_; }
    // Moves the focus to control; raises its GotFocus when it did not have it.
    void MoveTo(Control& control);
    // Forgets the focus (the form was unloaded).
    void Clear() noexcept { focused_ = nullptr; }

    // Called after every focus change (for views).
    std::function<void(Control*)> FocusChanged;

private:
    Control* focused_ = nullptr;
};

}  // namespace dbn::form
