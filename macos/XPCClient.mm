#import "macos/FoundationValue.h"
#import "macos/OrvXPCRequestData.h"
#include "service/Client.h"

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <utility>

namespace orv {

namespace {

constexpr std::chrono::seconds patience{10};
constexpr const char* bundleIdentifier = ORV_BUNDLE_IDENTIFIER;

/// Takes the first of the answers that a connection's handlers offer. They may still offer one when nobody waits.
class Mailbox {
public:
    void offer(ServiceAnswer answer)
    {
        if (!isTaken.exchange(true))
            promise.set_value(std::move(answer));
    }

    std::future<ServiceAnswer> future() { return promise.get_future(); }

private:
    std::atomic<bool> isTaken = false;
    std::promise<ServiceAnswer> promise;
};

ServiceAnswer failure(const std::string& reason)
{
    return {std::nullopt, std::string("the service ") + bundleIdentifier + " cannot be asked: " + reason};
}

ServiceAnswer received(NSDictionary* reply)
{
    auto value = valueOfObject(reply);
    return value ? ServiceAnswer{std::move(value), {}} : failure("its reply cannot be read");
}

NSXPCConnection* openConnection()
{
    NSXPCConnection* connection = [[NSXPCConnection alloc] initWithMachServiceName:foundationText(bundleIdentifier)
                                                                           options:0];
    connection.remoteObjectInterface = [NSXPCInterface interfaceWithProtocol:@protocol(OrvXPCRequestData)];
    [connection resume];
    return connection;
}

void send(Request request, NSXPCConnection* connection, const std::shared_ptr<Mailbox>& given)
{
    const auto mailbox = given; // a block would capture the reference
    const auto takeReply = ^(NSDictionary* reply) { mailbox->offer(received(reply)); };
    const auto takeError = ^(NSError* error) { mailbox->offer(failure(coreText(error.localizedDescription))); };
    id<OrvXPCRequestData> service = [connection remoteObjectProxyWithErrorHandler:takeError];
    switch (request) {
    case Request::thermal:
        return [service getModelDatawithReply:takeReply];
    case Request::bluetooth:
        return [service getBTDataWithReply:takeReply];
    }
}

} // namespace

ServiceAnswer askService(Request request)
{
    @autoreleasepool {
        const auto mailbox = std::make_shared<Mailbox>();
        auto answer = mailbox->future();
        NSXPCConnection* connection = openConnection();
        send(request, connection, mailbox);
        const bool isAnswered = answer.wait_for(patience) == std::future_status::ready;
        [connection invalidate];
        return isAnswered ? answer.get() : failure("it does not answer");
    }
}

} // namespace orv
