#pragma once

#import <AppKit/AppKit.h>

#import "examples/menubar/HelperClient.h"

NS_ASSUME_NONNULL_BEGIN

/// The hottest sensor, for the menu bar: "54°"; "–" when there is none.
NSString* hottestText(Readings* _Nullable sensors);

/// Fills a menu with the sensors by group, the fans and the batteries; with nil it says that there is no helper.
void fillMenu(NSMenu* menu, Readings* _Nullable sensors, Readings* _Nullable devices);

NS_ASSUME_NONNULL_END
