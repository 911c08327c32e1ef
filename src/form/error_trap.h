#pragma once

#include "form/form_services.h"

#include <functional>
#include <string>
#include <string_view>

namespace dbn {
class ComponentError;
}

namespace dbn::form {

// The standard error message: "Source: " source " - " operation " " CR LF
// "Description: " description.
std::string ErrorMessageText(const ComponentError& error, std::string_view operation);

// Shows the standard error message (exclamation icon, OK, title "Error").
void ShowErrorMessage(FormServices& services, const ComponentError& error,
                      std::string_view operation);

// Runs body under an operation's error trap: an error (a ComponentError, or
// any other exception reported as one of the component's own) is shown with
// the standard message and the operation ends. Answers false when it trapped.
bool RunTrapped(FormServices& services, std::string_view operation,
                const std::function<void()>& body);

}  // namespace dbn::form
