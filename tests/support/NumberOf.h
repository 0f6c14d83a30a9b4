// The number of the failure that an action ends with, 0 if it ends well.
#pragma once

#include "platform/base/Failure.h"

namespace pollarix::test {

template <typename Action> int NumberOf(const Action& action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure.Number();
    }
    return 0;
}

} // namespace pollarix::test
