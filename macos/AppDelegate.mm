#import "macos/AppDelegate.h"

#import "macos/OrvSMCHelper.h"
#include "service/OrvSMCHelperServer.h"

@implementation AppDelegate

- (instancetype)init
{
    self = [super init];
    if (self)
        orv::OrvSMCHelperServer::shared();
    return self;
}

- (BOOL)listener:(NSXPCListener*)listener shouldAcceptNewConnection:(NSXPCConnection*)newConnection
{
    (void)listener;
    newConnection.exportedInterface = [NSXPCInterface interfaceWithProtocol:@protocol(OrvXPCRequestData)];
    newConnection.exportedObject = [[OrvSMCHelper alloc] init];
    [newConnection resume];
    return YES;
}

@end
