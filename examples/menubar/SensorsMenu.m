#import "examples/menubar/SensorsMenu.h"

static NSArray<NSDictionary*>* readingsOfType(Readings* sensors, NSString* type)
{
    NSPredicate* isOfType = [NSPredicate predicateWithFormat:@"type == %@", type];
    NSSortDescriptor* byTitle = [NSSortDescriptor sortDescriptorWithKey:@"title"
                                                              ascending:YES
                                                               selector:@selector(localizedStandardCompare:)];
    NSArray* readings = [sensors.allValues filteredArrayUsingPredicate:isOfType];
    return [readings sortedArrayUsingDescriptors:@[ byTitle ]];
}

static double hottest(NSArray<NSDictionary*>* temperatures)
{
    return [[temperatures valueForKeyPath:@"@max.value"] doubleValue];
}

// The helper tells a title, not what it belongs to: an application groups as its readers think.
static NSString* groupOf(NSString* title)
{
    NSDictionary<NSString*, NSString*>* groups = @{
        @"GPU" : @"Graphics",
        @"CPU" : @"Processor",
        @"Core" : @"Processor",
        @"SOC" : @"Processor",
        @"Memory" : @"Memory",
        @"DIMM" : @"Memory",
        @"Battery" : @"Battery",
        @"Charger" : @"Battery",
        @"SSD" : @"Drives",
        @"HDD" : @"Drives",
        @"NAND" : @"Drives",
    };
    for (NSString* word in [title componentsSeparatedByString:@" "])
        if (groups[word])
            return groups[word];
    return @"Other";
}

static void addLine(NSMenu* menu, NSString* title, NSString* value)
{
    NSString* line = [NSString stringWithFormat:@"%@   %@", title, value];
    [menu addItem:[[NSMenuItem alloc] initWithTitle:line action:nil keyEquivalent:@""]];
}

static void addHeading(NSMenu* menu, NSString* title)
{
    [menu addItem:NSMenuItem.separatorItem];
    [menu addItem:[[NSMenuItem alloc] initWithTitle:title action:nil keyEquivalent:@""]];
}

static NSString* degrees(double celsius)
{
    return [NSString stringWithFormat:@"%.0f°", celsius];
}

// One line a group with its hottest sensor, and all of them behind it.
static void addGroups(NSMenu* menu, NSArray<NSDictionary*>* temperatures)
{
    NSMutableDictionary<NSString*, NSMutableArray*>* groups = [NSMutableDictionary dictionary];
    for (NSDictionary* sensor in temperatures) {
        NSString* group = groupOf(sensor[@"title"]);
        if (!groups[group])
            groups[group] = [NSMutableArray array];
        [groups[group] addObject:sensor];
    }
    for (NSString* group in [groups.allKeys sortedArrayUsingSelector:@selector(compare:)]) {
        NSMenu* members = [[NSMenu alloc] init];
        for (NSDictionary* sensor in groups[group])
            addLine(members, sensor[@"title"], degrees([sensor[@"value"] doubleValue]));
        addLine(menu, group, degrees(hottest(groups[group])));
        menu.itemArray.lastObject.submenu = members;
    }
}

// An entry of a watch holds whatever its companion wrote, so a level is not taken for granted.
static void addBatteries(NSMenu* menu, Readings* devices)
{
    NSDictionary* names = @{
        @"batteryLevel" : @"",
        @"batteryLevelLeft" : @" left",
        @"batteryLevelRight" : @" right",
        @"batteryLevelCase" : @" case"
    };
    for (NSString* device in [devices.allKeys sortedArrayUsingSelector:@selector(compare:)])
        for (NSString* level in [names.allKeys sortedArrayUsingSelector:@selector(compare:)])
            if ([devices[device][level] isKindOfClass:NSNumber.class])
                addLine(menu, [device stringByAppendingString:names[level]],
                    [NSString stringWithFormat:@"%@ %%", devices[device][level]]);
}

NSString* hottestText(Readings* sensors)
{
    NSArray* temperatures = readingsOfType(sensors, @"temperature");
    return temperatures.count > 0 ? degrees(hottest(temperatures)) : @"–";
}

void fillMenu(NSMenu* menu, Readings* sensors, Readings* devices)
{
    [menu removeAllItems];
    if (!sensors)
        [menu addItemWithTitle:@"The helper cannot be reached" action:nil keyEquivalent:@""];
    addGroups(menu, readingsOfType(sensors, @"temperature"));
    NSArray<NSDictionary*>* fans = readingsOfType(sensors, @"fans");
    if (fans.count > 0)
        addHeading(menu, @"Fans");
    for (NSDictionary* fan in fans)
        addLine(menu, fan[@"title"], [NSString stringWithFormat:@"%@ rpm", fan[@"value"]]);
    if (devices.count > 0)
        addHeading(menu, @"Batteries");
    addBatteries(menu, devices);
    [menu addItem:NSMenuItem.separatorItem];
    [menu addItemWithTitle:@"Quit" action:@selector(terminate:) keyEquivalent:@"q"];
}
