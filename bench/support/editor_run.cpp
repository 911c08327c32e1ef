#include "support/editor_run.h"

#include "core/text_validator.h"
#include "session/editor/component_registration.h"

#include <stdexcept>

namespace dbn::bench {

BenchServices::BenchServices() {
    RegisterEditorComponents(*this);
    form::RegisterTextValidator();
}

void BenchServices::ExpectNoBoxes() const {
    if (!boxes.empty()) {
        throw std::runtime_error("unexpected message: " + boxes.front().title + ": " +
                                 boxes.front().text);
    }
}

Clock::duration OpenEditor(BenchServices& services, std::int16_t partition, std::int16_t node,
                           const ShownActions& whileShown, StatementTrace* hostTrace) {
    Clock::time_point shownAt;
    services.whileShown = [&](form::GUI& gui) {
        shownAt = Clock::now();
        if (whileShown) {
            auto* formRules = dynamic_cast<Business_Rules*>(gui.FormBusinessRules());
            if (formRules == nullptr) {
                throw std::logic_error("the form has no session object of its own");
            }
            whileShown(gui, *formRules);
        }
        if (gui.IsLoaded()) {
            gui.cmdApply.SetEnabled(false);
            gui.Unload();
        }
    };
    const int shownBefore = services.modalShows;
    Business_Rules editor(services);
    if (hostTrace != nullptr) {
        hostTrace->Attach(editor.Db());
    }
    const Clock::time_point start = Clock::now();
    editor.ShowNodeEditor(1, partition, node);
    services.whileShown = {};
    services.ExpectNoBoxes();
    if (services.modalShows != shownBefore + 1) {
        throw std::runtime_error("the node was not shown");
    }
    return shownAt - start;
}

}  // namespace dbn::bench
