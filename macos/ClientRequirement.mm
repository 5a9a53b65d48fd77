#import "macos/ClientRequirement.h"

namespace orv {

void requireOfClients(NSXPCListener* listener)
{
    NSString* requirement = [NSBundle.mainBundle objectForInfoDictionaryKey:@"OrvClientRequirement"];
    if (requirement.length == 0)
        return;
    if (@available(macOS 13.0, *))
        [listener setConnectionCodeSigningRequirement:requirement];
}

} // namespace orv
