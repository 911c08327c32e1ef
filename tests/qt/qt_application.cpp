// The application of the window tests. It must end before the program does:
// Qt's own globals are gone by the time static objects are destroyed.

#include "window_support.h"

#include <memory>

namespace dbn::testing {
namespace {

std::unique_ptr<QApplication>& Holder() {
    static std::unique_ptr<QApplication> application;
    return application;
}

class ApplicationEnvironment : public ::testing::Environment {
public:
    void TearDown() override { Holder().reset(); }
};

// Google Test owns the environments it is given.
[[maybe_unused]] const ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

}  // namespace

QApplication& Application() {
    static int argc = 1;
    static char name[] = "test_qt";
    static char* argv[] = {name, nullptr};
    if (!Holder()) {
        Holder() = std::make_unique<QApplication>(argc, argv);
    }
    return *Holder();
}

}  // namespace dbn::testing
