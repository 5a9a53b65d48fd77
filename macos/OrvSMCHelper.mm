#import "macos/OrvSMCHelper.h"

#import "macos/CocoaReplySink.h"
#include "service/OrvSMCHelperServer.h"
#include "service/Replies.h"
#include "service/Request.h"

namespace orv {

namespace {

// Clients may change a thermal reply two levels deep, but only the outermost of a Bluetooth reply.
constexpr std::size_t thermalMutableLevels = 2;
constexpr std::size_t bluetoothMutableLevels = 1;

NSDictionary* builtReply(Request request, std::size_t mutableLevels)
{
    try {
        CocoaReplySink sink(mutableLevels);
        writeReply(request, OrvSMCHelperServer::shared(), sink, propertyListLimits);
        return sink.take();
    } catch (...) { // an exception would end the process in XPC's code, and a client would wait for ever
        return [NSMutableDictionary dictionary];
    }
}

} // namespace

} // namespace orv

@implementation OrvSMCHelper

- (void)getModelDatawithReply:(void (^)(NSDictionary*))reply
{
    @autoreleasepool {
        reply(orv::builtReply(orv::Request::thermal, orv::thermalMutableLevels));
    }
}

- (void)getBTDataWithReply:(void (^)(NSDictionary*))reply
{
    @autoreleasepool {
        reply(orv::builtReply(orv::Request::bluetooth, orv::bluetoothMutableLevels));
    }
}

@end
