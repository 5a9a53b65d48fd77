#include "platform/JSON.h"

#import "macos/FoundationValue.h"

namespace orv {

namespace {

id objectOfJSON(std::string_view bytes)
{
    NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    if (!data)
        return nil; // would raise
    return [NSJSONSerialization JSONObjectWithData:data options:0 error:nil];
}

} // namespace

std::optional<Value> parseJSON(std::string_view bytes)
{
    @autoreleasepool {
        @try {
            return valueOfObject(objectOfJSON(bytes));
        } @catch (NSException*) {
            return std::nullopt;
        }
    }
}

} // namespace orv
