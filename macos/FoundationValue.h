#pragma once

#import <Foundation/Foundation.h>

#include "readings/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// Never nil: each sequence of bytes that is not UTF-8 becomes U+FFFD.
NSString* foundationText(std::string_view text);

/// The text as UTF-8; empty for nil.
std::string coreText(NSString* text);

/// A property list or JSON object as a value. Nothing for nil, for an object of another kind, and for one nested more
/// than 512 containers deep.
std::optional<Value> valueOfObject(id object);

} // namespace orv
