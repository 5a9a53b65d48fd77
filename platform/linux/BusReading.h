#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace orv {

// Reads messages whose content others decide: whatever is of another type than asked for is passed over.

/// Calls `readEntry` inside each entry of a dictionary, which must read or skip both of its fields. Ends quietly where
/// the message turns out to be no such dictionary.
template <typename ReadEntry> void readDictionary(sd_bus_message* message, const char* entryType, ReadEntry readEntry)
{
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, entryType) <= 0)
        return;
    while (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, nullptr) > 0) {
        readEntry();
        if (sd_bus_message_exit_container(message) < 0)
            return;
    }
    sd_bus_message_exit_container(message);
}

/// The text or object path that comes next; empty when that is something else.
std::string_view readText(sd_bus_message* message);

// The content of the variant that comes next, if it has the type.
std::optional<bool> readBoolean(sd_bus_message* message);
std::optional<std::uint8_t> readByte(sd_bus_message* message);
std::optional<std::string_view> readVariantText(sd_bus_message* message);

} // namespace orv
