#include "tools/orvctl/BusMessageReader.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace orv {

namespace {

template <typename Basic> std::optional<Basic> readBasic(sd_bus_message* message, char type)
{
    Basic value{};
    if (sd_bus_message_read_basic(message, type, &value) <= 0)
        return std::nullopt;
    return value;
}

// Walks the items of an array or the fields of an entry; false when the message is not what it says it is.
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

std::optional<Value> readArray(sd_bus_message* message, bool isDictionary)
{
    std::vector<Member> members;
    const auto readField = [&](Member& member, bool& hasKey) {
        auto value = readBusValue(message);
        if (!value)
            return false;
        if (isDictionary && !hasKey)
            member.key = value->as<std::string>() ? *value->as<std::string>() : "";
        else
            member.value = std::move(*value);
        hasKey = true;
        return true;
    };
    const auto readItem = [&] {
        Member member;
        bool hasKey = false;
        const auto readFields = [&] { return readField(member, hasKey); };
        const bool isRead = isDictionary ? readContainer(message, readFields) : readFields();
        members.push_back(std::move(member));
        return isRead;
    };
    if (!readContainer(message, readItem))
        return std::nullopt;
    if (isDictionary)
        return Dictionary(std::move(members));
    Array array;
    for (auto& member : members)
        array.push_back(std::move(member.value));
    return array;
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

template <typename Content> std::optional<Value> valueOf(std::optional<Content> content)
{
    return content ? std::optional<Value>(Value(*content)) : std::nullopt;
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
        return readArray(message, contents[0] == '{');
    case 'v':
        return readVariant(message);
    case 'd':
        return valueOf(readBasic<double>(message, type));
    case 'x':
        return valueOf(readBasic<std::int64_t>(message, type));
    case 't':
        return valueOf(readBasic<std::uint64_t>(message, type));
    case 'b': {
        const auto truth = readBasic<int>(message, type);
        return truth ? std::optional<Value>(*truth != 0) : std::nullopt;
    }
    case 's': {
        const auto text = readBasic<const char*>(message, type);
        return text ? std::optional<Value>(std::string(*text)) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

} // namespace orv
