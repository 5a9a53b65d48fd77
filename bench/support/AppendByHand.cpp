#include "bench/support/AppendByHand.h"

#include <variant>

namespace orv {

namespace {

void appendText(sd_bus_message* message, const char* key, const char* text)
{
    sd_bus_message_open_container(message, 'e', "sv");
    sd_bus_message_append_basic(message, 's', key);
    sd_bus_message_open_container(message, 'v', "s");
    sd_bus_message_append_basic(message, 's', text);
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);
}

void appendNumber(sd_bus_message* message, const char* key, char type, const char* contents, const void* number)
{
    sd_bus_message_open_container(message, 'e', "sv");
    sd_bus_message_append_basic(message, 's', key);
    sd_bus_message_open_container(message, 'v', contents);
    sd_bus_message_append_basic(message, type, number);
    sd_bus_message_close_container(message);
    sd_bus_message_close_container(message);
}

void append(sd_bus_message* message, const TemperatureEntry& entry)
{
    appendText(message, "title", entry.title.c_str());
    appendText(message, "type", "temperature");
    appendText(message, "unit", "celcius");
    appendNumber(message, "value", 'd', "d", &entry.value);
}

void append(sd_bus_message* message, const FanEntry& entry)
{
    appendText(message, "title", entry.title.c_str());
    appendText(message, "type", "fans");
    appendText(message, "unit", "rpm");
    appendNumber(message, "value", 'x', "x", &entry.value);
    appendNumber(message, "minvalue", 'x', "x", &entry.minvalue);
    appendNumber(message, "maxvalue", 'x', "x", &entry.maxvalue);
}

} // namespace

void appendByHand(sd_bus_message* message, const ThermalDictionary& readings)
{
    sd_bus_message_open_container(message, 'a', "{sa{sv}}");
    for (const auto& [code, reading] : readings) {
        sd_bus_message_open_container(message, 'e', "sa{sv}");
        sd_bus_message_append_basic(message, 's', code.c_str());
        sd_bus_message_open_container(message, 'a', "{sv}");
        std::visit([&](const auto& entry) { append(message, entry); }, reading);
        sd_bus_message_close_container(message);
        sd_bus_message_close_container(message);
    }
    sd_bus_message_close_container(message);
}

} // namespace orv
