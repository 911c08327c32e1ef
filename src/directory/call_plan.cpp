#include "directory/call_plan.h"

namespace dbn::directory {

std::string CallPrompt::Text() const {
    return description.empty() ? reference : reference + " \"" + description + "\"";
}

std::string CallExitName(CallExit exit) {
    switch (exit) {
        case CallExit::ValidMatch:
            return "Valid Match";
        case CallExit::Abort:
            return "Abort";
        case CallExit::Star:
            return "*";
        case CallExit::Pound:
            return "#";
        case CallExit::Zero:
            return "0";
        case CallExit::Timeout:
            return "Timeout";
        case CallExit::Invalid:
            return "Invalid";
        case CallExit::ConfirmationExit:
            return "Confirmation Exit";
    }
    return "Abort";
}

CallPrompt DefaultPrompt(const std::string& what, const std::string& languages) {
    return {"built-in", what + " (" + languages + ")"};
}

}  // namespace dbn::directory
