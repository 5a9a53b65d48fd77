#include "platform/linux/BusReading.h"

namespace orv {

namespace {

template <typename Basic> std::optional<Basic> readVariant(sd_bus_message* message, char type)
{
    const char contents[]{type, '\0'};
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, contents) <= 0) {
        sd_bus_message_skip(message, "v");
        return std::nullopt;
    }
    Basic value{};
    const bool isRead = sd_bus_message_read_basic(message, type, &value) > 0;
    sd_bus_message_exit_container(message);
    return isRead ? std::optional(value) : std::nullopt;
}

} // namespace

std::string_view readText(sd_bus_message* message)
{
    char type = 0;
    const char* text = nullptr;
    const bool isText = sd_bus_message_peek_type(message, &type, nullptr) > 0
        && (type == SD_BUS_TYPE_STRING || type == SD_BUS_TYPE_OBJECT_PATH)
        && sd_bus_message_read_basic(message, type, &text) > 0;
    return isText ? text : "";
}

std::optional<bool> readBoolean(sd_bus_message* message)
{
    const auto value = readVariant<int>(message, SD_BUS_TYPE_BOOLEAN);
    return value ? std::optional(*value != 0) : std::nullopt;
}

std::optional<std::uint8_t> readByte(sd_bus_message* message)
{
    return readVariant<std::uint8_t>(message, SD_BUS_TYPE_BYTE);
}

std::optional<std::string_view> readVariantText(sd_bus_message* message)
{
    const auto value = readVariant<const char*>(message, SD_BUS_TYPE_STRING);
    return value ? std::optional<std::string_view>(*value) : std::nullopt;
}

} // namespace orv
