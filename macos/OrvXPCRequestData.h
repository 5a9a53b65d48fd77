#pragma once

#import <Foundation/Foundation.h>

/// What a client may ask. Each reply comes once, is never nil, and is the result of one whole refresh. The selectors
/// and the block's type are what clients call by: no letter of them may change.
@protocol OrvXPCRequestData

/// Sensor code to a dictionary of "title", "type", "unit", "value" and, for fans, "minvalue" and "maxvalue".
- (void)getModelDatawithReply:(void (^)(NSDictionary*))reply;

/// Device key to a dictionary of battery levels.
- (void)getBTDataWithReply:(void (^)(NSDictionary*))reply;

@end
