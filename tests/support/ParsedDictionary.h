#pragma once

#include "platform/JSON.h"
#include "readings/Value.h"

#include <gtest/gtest.h>

#include <string>

namespace orv {

/// A reply or an entry from its JSON; a fault of the test when that is no object.
inline Dictionary dictionary(const std::string& text)
{
    const auto value = parseJSON(text);
    const auto* members = value ? value->as<Dictionary>() : nullptr;
    EXPECT_TRUE(members) << text;
    return members ? *members : Dictionary();
}

} // namespace orv
