#pragma once

#include "form/controls/list_control.h"
#include "qt/control_binding.h"

#include <QComboBox>

namespace dbn::qt {

// A choice list as a drop-down combo box; an editable list as an editable one.
// A pick is a Pick, every edit of the text one Type with the whole text.
class ListBinding : public ControlBinding {
public:
    ListBinding(form::ListControl& list, QComboBox& combo, const TwipsScale& scale);

protected:
    void Sync(form::ChangeAspect aspect) override;

private:
    void SyncEntries();
    void SyncSelection();
    void SyncText();
    void HighlightShownEntry();

    form::ListControl& list_;
    QComboBox& combo_;
};

}  // namespace dbn::qt
