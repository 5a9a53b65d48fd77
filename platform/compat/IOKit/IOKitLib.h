#pragma once

// The part of IOKit's C interface that this program calls, declared as Apple's <IOKit/IOKitLib.h> declares it, for
// systems that have no IOKit. The functions are defined in hardware/IOKitCalls.cpp.

#include <cstddef>
#include <cstdint>

extern "C" {

typedef int kern_return_t;
typedef unsigned int mach_port_t;
typedef mach_port_t task_port_t;
typedef mach_port_t io_object_t;
typedef io_object_t io_connect_t;
typedef io_object_t io_iterator_t;
typedef io_object_t io_service_t;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;

#define MACH_PORT_NULL 0
#define KERN_SUCCESS 0
#define IO_OBJECT_NULL ((io_object_t)0)

mach_port_t mach_task_self(void);

CFMutableDictionaryRef IOServiceMatching(const char* name);
kern_return_t IOServiceGetMatchingServices(mach_port_t mainPort, CFDictionaryRef matching, io_iterator_t* existing);
io_object_t IOIteratorNext(io_iterator_t iterator);
kern_return_t IOObjectRelease(io_object_t object);
kern_return_t IOServiceOpen(io_service_t service, task_port_t owningTask, uint32_t type, io_connect_t* connect);
kern_return_t IOServiceClose(io_connect_t connect);
kern_return_t IOConnectCallStructMethod(mach_port_t connection, uint32_t selector, const void* inputStruct,
    size_t inputStructCnt, void* outputStruct, size_t* outputStructCnt);
}
