#pragma once

#import <Foundation/Foundation.h>

namespace orv {

/// Makes a listener refuse every process that does not fulfil the code-signing requirement of this program's property
/// list (`OrvClientRequirement`). An empty one lets any process connect; so do systems before macOS 13, which cannot
/// check it. Before the listener is resumed.
void requireOfClients(NSXPCListener* listener);

} // namespace orv
