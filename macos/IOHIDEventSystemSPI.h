#pragma once

// What IOKit exports of the HID event system without declaring it.

#include <IOKit/hidsystem/IOHIDEventSystemClient.h>
#include <IOKit/hidsystem/IOHIDServiceClient.h>

#include <cstdint>

extern "C" {

typedef struct __IOHIDEvent* IOHIDEventRef;

IOHIDEventSystemClientRef IOHIDEventSystemClientCreate(CFAllocatorRef allocator);
void IOHIDEventSystemClientSetMatching(IOHIDEventSystemClientRef client, CFDictionaryRef matching);
IOHIDEventRef IOHIDServiceClientCopyEvent(
    IOHIDServiceClientRef service, uint32_t type, IOHIDEventRef matching, uint32_t options);
double IOHIDEventGetFloatValue(IOHIDEventRef event, uint32_t field);
}
