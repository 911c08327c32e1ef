// The plan of a call through a stored node: the node is loaded into an
// editor form without a display, read as the editor shows it, and closed.
#include "core/component_error.h"
#include "core/node_types.h"
#include "form/gui.h"
#include "session/editor/business_rules.h"
#include "session/editor/caller_simulation.h"
#include "session/nodes/directory_check.h"

#include <exception>
#include <optional>

namespace dbn::session {
namespace {

// The form's services without a display: boxes are kept (a failure to show
// the node is told in one), questions are declined, and the modal show reads
// the plan and closes the form at once.
class PlanReader : public form::FormServices {
public:
    int MsgBox(const std::string& text, form::MsgBoxButtons buttons, form::MsgBoxIcon,
               const std::string&) override {
        boxes_ += (boxes_.empty() ? "" : "\n") + text;
        return buttons == form::MsgBoxButtons::OK ? form::kAnswerOK : form::kAnswerCancel;
    }
    long Confirm(const std::string&, const std::string&) override { return form::kConfirmCancel; }
    void SetBusyCursor(bool) override {}
    void DoEvents() override {}
    void ShowModal(form::GUI& form) override {
        try {
            plan_ = FormCallPlan(form);
        } catch (...) {
            error_ = std::current_exception();
        }
        form.DiscardChangesAndUnload();
    }
    void EndModal(form::GUI&) override {}

    directory::CallPlan Take(std::int16_t config, std::int16_t partition, std::int16_t node) {
        if (error_) {
            std::rethrow_exception(error_);
        }
        if (!plan_) {
            RaiseError(kErrNodeNotShown,
                       boxes_.empty()
                           ? MissingNodeText(node_type::kDialByNameCode, node, config, partition)
                           : boxes_);
        }
        return std::move(*plan_);
    }

private:
    std::string boxes_;
    std::optional<directory::CallPlan> plan_;
    std::exception_ptr error_;
};

}  // namespace

directory::CallPlan StoredCallPlan(std::int16_t config, std::int16_t partition, std::int16_t node) {
    PlanReader reader;
    {
        Business_Rules editor(reader);
        editor.ShowNodeEditor(config, partition, node);
    }
    return reader.Take(config, partition, node);
}

}  // namespace dbn::session
