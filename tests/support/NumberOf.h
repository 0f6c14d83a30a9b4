// What an action ends with: its failure, or the number of it, which is 0 if it ends well.
#pragma once

#include "platform/base/Failure.h"

namespace pollarix::test {

template <typename Action> Failure FailureOf(const Action& action) {
    try {
        action();
    } catch (const Failure& failure) {
        return failure;
    }
    return Failure(0, "none");
}

template <typename Action> int NumberOf(const Action& action) {
    return FailureOf(action).Number();
}

} // namespace pollarix::test
