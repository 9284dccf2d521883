// What a reader tells, or the fault that it finds in what it is given.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include "failure.h"

namespace zerklsc::tool {

// The text that `act` returns, or without the file's name why it refuses its input.
template <class Act>
std::string told_by(const Act& act) {
    try {
        return act();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), exit_input) << failure.what();
        const std::string what = failure.what();
        return what.substr(what.find(": ") + 2);
    }
}

} // namespace zerklsc::tool
