#import "macos/OrvSMCHelper.h"

#import "macos/CocoaReplySink.h"
#include "service/OrvSMCHelperServer.h"
#include "service/Replies.h"

namespace orv {

namespace {

// Clients may change a thermal reply two levels deep, but only the outermost of a Bluetooth reply.
constexpr std::size_t thermalMutableLevels = 2;
constexpr std::size_t bluetoothMutableLevels = 1;

template <typename Write> NSDictionary* builtReply(std::size_t mutableLevels, Write write)
{
    try {
        CocoaReplySink sink(mutableLevels);
        write(sink);
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
        reply(orv::builtReply(orv::thermalMutableLevels, [](orv::ReplySink& sink) {
            orv::writeThermalReply(*orv::OrvSMCHelperServer::shared().smcData.take(), sink);
        }));
    }
}

- (void)getBTDataWithReply:(void (^)(NSDictionary*))reply
{
    @autoreleasepool {
        reply(orv::builtReply(orv::bluetoothMutableLevels, [](orv::ReplySink& sink) {
            const auto levels = orv::OrvSMCHelperServer::shared().btData.take();
            orv::writeBluetoothReply(*levels, sink, orv::propertyListLimits);
        }));
    }
}

@end
