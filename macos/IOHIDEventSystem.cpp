#include "macos/IOHIDEventSystem.h"

#include "base/Owned.h"
#include "macos/IOHIDEventSystemSPI.h"

#include <CoreFoundation/CoreFoundation.h>

namespace orv {

namespace {

template <typename Reference> struct CoreFoundationTraits {
    using Handle = Reference;
    static constexpr Handle none = nullptr;
    static void release(Handle handle) { CFRelease(handle); }
};

template <typename Reference> using OwnedCF = Owned<CoreFoundationTraits<Reference>>;

OwnedCF<CFNumberRef> number32(std::int32_t number)
{
    return OwnedCF<CFNumberRef>(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &number));
}

OwnedCF<CFDictionaryRef> matchingDictionary(std::int32_t page, std::int32_t usage)
{
    const auto pageNumber = number32(page);
    const auto usageNumber = number32(usage);
    const void* keys[] = {CFSTR("PrimaryUsagePage"), CFSTR("PrimaryUsage")};
    const void* values[] = {pageNumber.get(), usageNumber.get()};
    return OwnedCF<CFDictionaryRef>(CFDictionaryCreate(
        kCFAllocatorDefault, keys, values, 2, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

Value valueOfNumber(CFNumberRef number)
{
    std::int64_t integer = 0;
    if (CFNumberGetValue(number, kCFNumberSInt64Type, &integer))
        return integer;
    double real = 0;
    CFNumberGetValue(number, kCFNumberDoubleType, &real);
    return real;
}

class ServiceClient final : public HIDService {
public:
    explicit ServiceClient(IOHIDServiceClientRef visited)
        : service(visited)
    {
    }

    Value locationID() override
    {
        const OwnedCF<CFTypeRef> property(IOHIDServiceClientCopyProperty(service, CFSTR("LocationID")));
        if (!property || CFGetTypeID(property.get()) != CFNumberGetTypeID())
            return {};
        return valueOfNumber(static_cast<CFNumberRef>(property.get()));
    }

    std::optional<double> eventValue(std::int32_t eventType, std::int32_t field) override
    {
        const OwnedCF<IOHIDEventRef> event(
            IOHIDServiceClientCopyEvent(service, static_cast<std::uint32_t>(eventType), nullptr, 0));
        if (!event)
            return std::nullopt;
        return IOHIDEventGetFloatValue(event.get(), static_cast<std::uint32_t>(field));
    }

private:
    IOHIDServiceClientRef service; // the array's
};

} // namespace

bool IOHIDEventSystem::forEachService(
    std::int32_t page, std::int32_t usage, const std::function<void(HIDService&)>& visit)
{
    const auto matching = matchingDictionary(page, usage);
    const OwnedCF<IOHIDEventSystemClientRef> client(IOHIDEventSystemClientCreate(kCFAllocatorDefault));
    if (!client)
        return false;
    IOHIDEventSystemClientSetMatching(client.get(), matching.get());
    const OwnedCF<CFArrayRef> services(IOHIDEventSystemClientCopyServices(client.get()));
    if (!services)
        return true;
    const auto count = CFArrayGetCount(services.get());
    for (CFIndex index = 0; index < count; ++index) {
        ServiceClient service(
            static_cast<IOHIDServiceClientRef>(const_cast<void*>(CFArrayGetValueAtIndex(services.get(), index))));
        visit(service);
    }
    return true;
}

} // namespace orv
