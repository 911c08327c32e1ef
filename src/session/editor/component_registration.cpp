#include "session/editor/component_registration.h"

#include "core/component_factory.h"
#include "session/editor/business_rules.h"
#include "session/editor/confirmation_dialog.h"

namespace dbn {

void RegisterEditorComponents(form::FormServices& services) {
    RegisterComponent(kBusinessRulesClass,
                      [&services] { return std::make_unique<Business_Rules>(services); });
    RegisterComponent(kConfirmationDialogClass,
                      [&services] { return std::make_unique<ConfirmationDialog>(services); });
}

}  // namespace dbn
