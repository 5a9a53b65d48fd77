#include "platform/JSON.h"

#import "macos/FoundationValue.h"

namespace orv {

namespace {

// Foundation has no name for this one.
NSString* const faultIndexKey = @"NSJSONSerializationErrorIndex";

std::optional<std::size_t> positionOf(NSError* error)
{
    id index = error.userInfo[faultIndexKey];
    if (![index isKindOfClass:NSNumber.class])
        return std::nullopt;
    return static_cast<std::size_t>([index unsignedLongLongValue]);
}

id objectOfJSON(std::string_view bytes, NSError* __autoreleasing* error)
{
    NSData* data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    if (!data)
        return nil; // would raise
    return [NSJSONSerialization JSONObjectWithData:data options:0 error:error];
}

} // namespace

std::optional<Value> parseJSON(std::string_view bytes, std::optional<std::size_t>* faultPosition)
{
    @autoreleasepool {
        @try {
            NSError* error = nil;
            auto value = valueOfObject(objectOfJSON(bytes, &error));
            if (faultPosition)
                *faultPosition = positionOf(error);
            return value;
        } @catch (NSException*) {
            return std::nullopt;
        }
    }
}

} // namespace orv
