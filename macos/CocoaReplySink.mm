#import "macos/CocoaReplySink.h"

#import "macos/FoundationValue.h"

namespace orv {

CocoaReplySink::CocoaReplySink(std::size_t levels)
    : mutableLevels(levels)
{
}

void CocoaReplySink::beginDictionary()
{
    open.push_back({[NSMutableDictionary dictionary], nil, nil});
}

void CocoaReplySink::key(std::string_view key)
{
    open.back().key = foundationText(key);
}

void CocoaReplySink::endDictionary()
{
    NSMutableDictionary* dictionary = open.back().dictionary;
    open.pop_back();
    if (open.empty())
        finished = dictionary;
    else
        add(open.size() < mutableLevels ? dictionary : [dictionary copy]);
}

void CocoaReplySink::beginArray()
{
    open.push_back({nil, [NSMutableArray array], nil});
}

void CocoaReplySink::endArray()
{
    NSMutableArray* array = open.back().array;
    open.pop_back();
    add([array copy]);
}

void CocoaReplySink::text(std::string_view text)
{
    add(foundationText(text));
}

void CocoaReplySink::real(double number)
{
    add([NSNumber numberWithDouble:number]);
}

void CocoaReplySink::integer(std::int64_t number)
{
    add([NSNumber numberWithLongLong:number]);
}

void CocoaReplySink::natural(std::uint64_t number)
{
    add([NSNumber numberWithUnsignedLongLong:number]);
}

void CocoaReplySink::boolean(bool truth)
{
    add([NSNumber numberWithBool:truth]);
}

void CocoaReplySink::add(id value)
{
    const auto& container = open.back();
    if (container.dictionary)
        [container.dictionary setObject:value forKey:container.key];
    else
        [container.array addObject:value];
}

} // namespace orv
