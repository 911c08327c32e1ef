#pragma once

#include "form/form_services.h"

namespace dbn {

// Makes the editor's components creatable by class name: the editor
// itself (kBusinessRulesClass) and the question dialog used when a missing
// node may be created. Their objects use `services`, which must outlive
// every object created. Calling it again replaces the makers.
void RegisterEditorComponents(form::FormServices& services);

}  // namespace dbn
