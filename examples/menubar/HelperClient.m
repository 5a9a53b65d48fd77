#import "examples/menubar/HelperClient.h"

#import "macos/OrvXPCRequestData.h"

static NSString* const serviceName = @ORV_BUNDLE_IDENTIFIER;

@implementation HelperClient {
    NSXPCConnection* connection; // kept: it also reaches a helper that was started again
}

- (NSXPCConnection*)openConnection
{
    if (connection)
        return connection;
    connection = [[NSXPCConnection alloc] initWithMachServiceName:serviceName options:0];
    connection.remoteObjectInterface = [NSXPCInterface interfaceWithProtocol:@protocol(OrvXPCRequestData)];
    // While the agent is not loaded there is nothing of that name: the connection is over, and the next one may do.
    __weak HelperClient* weakSelf = self;
    connection.invalidationHandler = ^{ dispatch_async(dispatch_get_main_queue(), ^{ [weakSelf forgetConnection]; }); };
    [connection resume];
    return connection;
}

- (void)forgetConnection
{
    connection = nil;
}

// Replies and errors come on a queue of the connection's own; of each question there is exactly one of them.
- (void)askThen:(void (^)(Readings*, Readings*))handler
{
    __block BOOL isDone = NO;
    void (^finish)(Readings*, Readings*) = ^(Readings* sensors, Readings* devices) {
        dispatch_async(dispatch_get_main_queue(), ^{
            if (!isDone)
                handler(sensors, devices);
            isDone = YES;
        });
    };
    id<OrvXPCRequestData> helper = [[self openConnection] remoteObjectProxyWithErrorHandler:^(NSError* error) {
        NSLog(@"The helper cannot be reached: %@", error.localizedDescription);
        finish(nil, nil);
    }];
    [helper getModelDatawithReply:^(
        NSDictionary* sensors) { [helper getBTDataWithReply:^(NSDictionary* devices) { finish(sensors, devices); }]; }];
}

@end
