#pragma once

#import <Foundation/Foundation.h>

/// Accepts every connection and gives each its own request object. Creating it creates the data server, and so runs
/// the first refresh.
@interface AppDelegate : NSObject <NSXPCListenerDelegate>
@end
