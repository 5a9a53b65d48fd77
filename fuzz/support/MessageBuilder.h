#pragma once

#include "fuzz/support/Answers.h"

#include <systemd/sd-bus.h>

#include <cstddef>
#include <initializer_list>
#include <vector>

namespace orv {

/// Appends to a bus message what the input says. What cannot be appended is left out by the bus library itself.
class MessageBuilder {
public:
    /// The texts are those that the receiver knows: a text is one of them more often than not.
    MessageBuilder(sd_bus_message* busMessage, Answers& given, std::initializer_list<const char*> knownTexts)
        : message(busMessage)
        , answers(given)
        , known(knownTexts)
    {
    }

    void appendText() { appendText(known); }
    void appendText(const std::vector<const char*>& texts);
    void appendProperties();
    /// A variant of any content.
    void appendVariant(int depth = 0);

    /// Opens a container, appends to it and closes it again; nothing once the input is at its end.
    template <typename Append> void container(char type, const char* contents, Append append)
    {
        if (answers.isAtEnd() || sd_bus_message_open_container(message, type, contents) < 0)
            return;
        append();
        sd_bus_message_close_container(message);
    }

    /// A container of fewer items than so many.
    template <typename Append> void array(const char* contents, unsigned most, Append append)
    {
        container('a', contents, [&] {
            for (auto count = answers.byte() % most; count > 0; --count)
                append();
        });
    }

    template <typename Content> void append(const char* type, Content content)
    {
        sd_bus_message_append(message, type, content);
    }

private:
    sd_bus_message* message;
    Answers& answers;
    const std::vector<const char*> known;
};

} // namespace orv
