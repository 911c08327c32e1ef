#include "session/editor/confirmation_dialog.h"

namespace dbn {

long ConfirmationDialog::Show(std::int16_t style, const std::string& message, long icon,
                              long defaultButton, const std::string& title) {
    (void)style;
    (void)icon;
    (void)defaultButton;
    return services_.Confirm(message, title);
}

}  // namespace dbn
