#pragma once

// Opening the editor headless for a measurement, with services that answer
// from queues (those of the tests) and report any message box as a failure.

#include "fake_services.h"

#include "form/gui.h"
#include "session/editor/business_rules.h"
#include "support/statement_trace.h"

#include <chrono>
#include <cstdint>
#include <functional>

namespace dbn::bench {

using Clock = std::chrono::steady_clock;
using ShownActions = std::function<void(form::GUI&, Business_Rules& formRules)>;

// Services for the measurements; registers the editor's components (the
// question dialog and the label validator) with itself.
class BenchServices : public testing::FakeServices {
public:
    BenchServices();
    // Throws std::runtime_error naming the first message box shown, if any.
    void ExpectNoBoxes() const;
};

// Opens node `node` of configuration 1 and `partition` through
// ShowNodeEditor; `whileShown` runs while the form shows, after which the
// form is closed without saving. Answers the time from the call to the modal
// show. With hostTrace the host object's database steps are recorded.
// Throws std::runtime_error when the node was not shown or a box appeared.
Clock::duration OpenEditor(BenchServices& services, std::int16_t partition, std::int16_t node,
                           const ShownActions& whileShown = {},
                           StatementTrace* hostTrace = nullptr);

// Seconds as Google Benchmark's manual timing wants them.
inline double Seconds(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

}  // namespace dbn::bench
