#pragma once

#include "service/Replies.h"

#include <systemd/sd-bus.h>

#include <vector>

namespace orv {

/// Appends a reply to a D-Bus message as a{sa{sv}}. Deeper dictionaries are a{sv}, arrays av.
class BusMessageSink final : public ReplySink {
public:
    explicit BusMessageSink(sd_bus_message* busMessage)
        : message(busMessage)
    {
    }

    void beginDictionary() override;
    void key(std::string_view key) override;
    void endDictionary() override;
    void beginArray() override;
    void endArray() override;
    void text(std::string_view text) override;
    void real(double number) override;
    void integer(std::int64_t number) override;
    void natural(std::uint64_t number) override;
    void boolean(bool truth) override;

    /// False when something could not be appended; the message is then of no use.
    bool isComplete() const { return error >= 0; }

private:
    enum class Container { reply, entry, dictionary, array };

    void open(char type, const char* contents);
    void close();
    void openVariant(const char* contents);
    void closeVariant();
    void appendText(std::string_view text);
    void appendBasic(char type, const char* contents, const void* value);

    sd_bus_message* message;
    std::vector<Container> containers;
    int error = 0; // the first
};

} // namespace orv
