#include "linux/bus/BusMessageSink.h"

namespace orv {

void BusMessageSink::beginDictionary()
{
    if (containers.empty()) {
        open('a', "{sa{sv}}");
        containers.push_back(Container::reply);
        return;
    }
    const bool isEntry = containers.back() == Container::reply;
    if (!isEntry)
        openVariant("a{sv}");
    open('a', "{sv}");
    containers.push_back(isEntry ? Container::entry : Container::dictionary);
}

void BusMessageSink::key(std::string_view key)
{
    open('e', containers.back() == Container::reply ? "sa{sv}" : "sv");
    appendText(key);
}

void BusMessageSink::endDictionary()
{
    const auto ended = containers.back();
    containers.pop_back();
    close();
    if (ended == Container::entry)
        close(); // the entry of the reply that held it
    if (ended == Container::dictionary)
        closeVariant();
}

void BusMessageSink::beginArray()
{
    openVariant("av");
    open('a', "v");
    containers.push_back(Container::array);
}

void BusMessageSink::endArray()
{
    containers.pop_back();
    close();
    closeVariant();
}

void BusMessageSink::text(std::string_view text)
{
    openVariant("s");
    appendText(text);
    closeVariant();
}

void BusMessageSink::real(double number)
{
    appendBasic('d', "d", &number);
}

void BusMessageSink::integer(std::int64_t number)
{
    appendBasic('x', "x", &number);
}

void BusMessageSink::natural(std::uint64_t number)
{
    appendBasic('t', "t", &number);
}

void BusMessageSink::boolean(bool truth)
{
    const int number = truth;
    appendBasic('b', "b", &number);
}

void BusMessageSink::open(char type, const char* contents)
{
    if (error >= 0)
        error = sd_bus_message_open_container(message, type, contents);
}

void BusMessageSink::close()
{
    if (error >= 0)
        error = sd_bus_message_close_container(message);
}

void BusMessageSink::openVariant(const char* contents)
{
    open('v', contents);
}

// A value ends the dictionary entry that its key began.
void BusMessageSink::closeVariant()
{
    close();
    if (containers.back() != Container::array)
        close();
}

// Copied to where it belongs: a basic value would have to end with a NUL, which texts of ours need not.
void BusMessageSink::appendText(std::string_view text)
{
    char* space = nullptr;
    if (error >= 0)
        error = sd_bus_message_append_string_space(message, text.size(), &space);
    if (error >= 0)
        text.copy(space, text.size());
}

void BusMessageSink::appendBasic(char type, const char* contents, const void* value)
{
    openVariant(contents);
    if (error >= 0)
        error = sd_bus_message_append_basic(message, type, value);
    closeVariant();
}

} // namespace orv
