#pragma once

#import "macos/OrvXPCRequestData.h"

/// Answers the requests of one connection from the readings of the last refresh. Any thread.
@interface OrvSMCHelper : NSObject <OrvXPCRequestData>
@end
