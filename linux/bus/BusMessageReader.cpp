#include "linux/bus/BusMessageReader.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace orv {

namespace {

// Walks the items of a container; false when the message is not what it says it is.
template <typename ReadItem> bool readContainer(sd_bus_message* message, ReadItem readItem)
{
    if (sd_bus_message_enter_container(message, 0, nullptr) <= 0)
        return false;
    while (sd_bus_message_at_end(message, 0) == 0) {
        if (!readItem())
            return false;
    }
    return sd_bus_message_exit_container(message) >= 0;
}

bool readEntry(sd_bus_message* message, Member& member)
{
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, nullptr) <= 0)
        return false;
    auto key = readBusValue(message);
    auto value = readBusValue(message);
    if (!key || !value)
        return false;
    if (auto* text = std::get_if<std::string>(&key->data))
        member.key = std::move(*text);
    member.value = std::move(*value);
    return sd_bus_message_exit_container(message) >= 0;
}

std::optional<Value> readDictionary(sd_bus_message* message)
{
    std::vector<Member> members;
    if (!readContainer(message, [&] { return readEntry(message, members.emplace_back()); }))
        return std::nullopt;
    return Dictionary(std::move(members));
}

std::optional<Value> readArray(sd_bus_message* message)
{
    Array array;
    const auto readItem = [&] {
        auto value = readBusValue(message);
        if (value)
            array.push_back(std::move(*value));
        return value.has_value();
    };
    return readContainer(message, readItem) ? std::optional<Value>(std::move(array)) : std::nullopt;
}

std::optional<Value> readVariant(sd_bus_message* message)
{
    std::optional<Value> value;
    const auto readContent = [&] {
        value = readBusValue(message);
        return value.has_value();
    };
    return readContainer(message, readContent) ? std::move(value) : std::nullopt;
}

/// Reads a basic value as `Basic`, which becomes `Content`.
template <typename Basic, typename Content = Basic> std::optional<Value> readBasic(sd_bus_message* message, char type)
{
    Basic value{};
    if (sd_bus_message_read_basic(message, type, &value) <= 0)
        return std::nullopt;
    return Value(Content(value));
}

// Such as lists of bytes, which may be long, and descriptors.
std::optional<Value> skipValue(sd_bus_message* message)
{
    return sd_bus_message_skip(message, nullptr) > 0 ? std::optional(Value()) : std::nullopt;
}

} // namespace

std::optional<Value> readBusValue(sd_bus_message* message)
{
    char type = 0;
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(message, &type, &contents) <= 0)
        return std::nullopt;
    switch (type) {
    case 'a':
        if (contents[0] == 'v')
            return readArray(message);
        return contents[0] == '{' ? readDictionary(message) : skipValue(message);
    case 'v':
        return readVariant(message);
    case 'd':
        return readBasic<double>(message, type);
    case 'x':
        return readBasic<std::int64_t>(message, type);
    case 'i':
        return readBasic<std::int32_t, std::int64_t>(message, type);
    case 't':
        return readBasic<std::uint64_t>(message, type);
    case 'y':
        return readBasic<std::uint8_t, std::int64_t>(message, type);
    case 'b':
        return readBasic<int, bool>(message, type);
    case 's':
    case 'o':
        return readBasic<const char*, std::string>(message, type);
    default:
        return skipValue(message);
    }
}

Dictionary readBusDictionary(sd_bus_message* message)
{
    auto value = readBusValue(message);
    auto* dictionary = value ? std::get_if<Dictionary>(&value->data) : nullptr;
    return dictionary ? std::move(*dictionary) : Dictionary();
}

} // namespace orv
