#include "form/error_trap.h"

#include "core/component_error.h"

#include <exception>

namespace dbn::form {

std::string ErrorMessageText(const ComponentError& error, std::string_view operation) {
    std::string text = "Source: ";
    text += error.Source();
    text += " - ";
    text += operation;
    text += " \r\nDescription: ";
    text += error.Description();
    return text;
}

void ShowErrorMessage(FormServices& services, const ComponentError& error,
                      std::string_view operation) {
    services.MsgBox(ErrorMessageText(error, operation), MsgBoxButtons::OK, MsgBoxIcon::Exclamation,
                    "Error");
}

bool RunTrapped(FormServices& services, std::string_view operation,
                const std::function<void()>& body) {
    try {
        body();
        return true;
    } catch (const ComponentError& error) {
        ShowErrorMessage(services, error, operation);
    } catch (const std::exception& error) {
        ShowErrorMessage(services, ComponentError(51, kComponentSource, error.what()), operation);
    }
    return false;
}

}  // namespace dbn::form
