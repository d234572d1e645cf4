#include "Monkey.h"

#include <cstdlib>
#include <exception>

namespace {

unsigned Setting(const char* name, unsigned usual) {
    const char* const value = std::getenv(name);
    return value != nullptr ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : usual;
}

using RandomEditing = Monkey;

TEST_F(RandomEditing, keepsWhatTheCanvasHoldsInOrderAndSavesIt) {
    const unsigned seed = Setting("CORVANE_STORM_SEED", 1);
    const unsigned events = Setting("CORVANE_STORM_EVENTS", 3000);
    open(seed);
    unsigned event = 0;
    try {
        for (; event < events && !HasFailure(); ++event) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", event " + std::to_string(event));
            act();
        }
    } catch (const std::exception& failure) {
        ADD_FAILURE() << failure.what();
    }
    EXPECT_FALSE(HasFailure()) << "after: " << lastEvents();
    report(event);
}

} // namespace
