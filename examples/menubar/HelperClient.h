#pragma once

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSDictionary<NSString*, NSDictionary<NSString*, id>*> Readings;

/// Asks the helper for its latest readings. All of it on the main thread.
@interface HelperClient : NSObject

/// Takes both replies, or, when the helper cannot be reached, nil twice and once.
- (void)askThen:(void (^)(Readings* _Nullable sensors, Readings* _Nullable devices))handler;

@end

NS_ASSUME_NONNULL_END
