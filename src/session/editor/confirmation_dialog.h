#pragma once

#include "core/component_factory.h"
#include "form/form_services.h"

#include <cstdint>
#include <string>

namespace dbn {

// The class name under which the dialog is created.
inline constexpr const char* kConfirmationDialogClass = "ConfirmationDialog";

// The question asked before a missing referenced node is created. It offers
// "Yes" (2), "Yes to All" (4), "No" (7), "No to All" (5) and "Cancel" (3);
// closing it answers 3.
// Created by name for one check and released after it.
class ConfirmationDialog : public Component {
public:
    explicit ConfirmationDialog(form::FormServices& services) : services_(services) {}

    // The style, icon and default-button arguments are accepted for the
    // callers' sake; the toolkit's dialog always offers the four choices.
    long Show(std::int16_t style, const std::string& message, long icon, long defaultButton,
              const std::string& title);

private:
    form::FormServices& services_;
};

}  // namespace dbn
