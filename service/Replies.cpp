#include "service/Replies.h"

#include "readings/Text.h"

#include <type_traits>
#include <utility>
#include <variant>

namespace orv {

namespace {

void writeText(ReplySink& sink, std::string_view key, std::string_view text)
{
    sink.key(key);
    sink.text(text);
}

void writeInteger(ReplySink& sink, std::string_view key, std::int64_t number)
{
    sink.key(key);
    sink.integer(number);
}

void writeEntry(ReplySink& sink, const TemperatureEntry& entry)
{
    writeText(sink, "title", entry.title);
    writeText(sink, "type", "temperature");
    writeText(sink, "unit", "celcius"); // kept: clients match this text
    sink.key("value");
    sink.real(entry.value);
}

void writeEntry(ReplySink& sink, const FanEntry& entry)
{
    writeText(sink, "title", entry.title);
    writeText(sink, "type", "fans");
    writeText(sink, "unit", "rpm");
    writeInteger(sink, "value", entry.value);
    writeInteger(sink, "minvalue", entry.minvalue);
    writeInteger(sink, "maxvalue", entry.maxvalue);
}

/// Writes what a reply can carry of values from outside.
class LimitedWriter {
public:
    LimitedWriter(ReplySink& replySink, const ReplyLimits& replyLimits)
        : sink(replySink)
        , limits(replyLimits)
    {
    }

    void writeKey(std::string_view key) { sink.key(limits.noncharacters ? key : textWithoutNoncharacters(key)); }

    void write(const Dictionary& dictionary)
    {
        const Nesting nesting(*this);
        sink.beginDictionary();
        for (const auto& [key, value] : dictionary) {
            if (!canCarry(value))
                continue;
            writeKey(key);
            write(value);
        }
        sink.endDictionary();
    }

private:
    struct Nesting {
        explicit Nesting(LimitedWriter& writer)
            : depth(++writer.depth)
        {
        }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;
        ~Nesting() { --depth; }

        std::size_t& depth;
    };

    bool canCarry(const Value& value) const
    {
        return !std::holds_alternative<std::nullptr_t>(value.data) && depth <= limits.depth;
    }

    void write(const Value& value)
    {
        std::visit([&](const auto& content) { write(content); }, value.data);
    }

    void write(std::nullptr_t) { }
    void write(bool truth) { sink.boolean(truth); }
    void write(std::int64_t number) { sink.integer(number); }
    void write(std::uint64_t number) { sink.natural(number); }
    void write(double number) { sink.real(number); }
    void write(const std::string& text)
    {
        sink.text(limits.noncharacters ? std::string_view(text) : textWithoutNoncharacters(text));
    }
    void write(const Array& array)
    {
        const Nesting nesting(*this);
        sink.beginArray();
        for (const auto& value : array) {
            if (canCarry(value))
                write(value);
        }
        sink.endArray();
    }

    ReplySink& sink;
    const ReplyLimits& limits;
    std::size_t depth = 0; // containers around what is being written
};

} // namespace

void writeThermalReply(const ThermalDictionary& readings, ReplySink& sink)
{
    sink.beginDictionary();
    for (const auto& [code, reading] : readings) {
        sink.key(code);
        sink.beginDictionary();
        std::visit([&](const auto& entry) { writeEntry(sink, entry); }, reading);
        sink.endDictionary();
    }
    sink.endDictionary();
}

void writeBluetoothReply(const BluetoothBatteryDictionary& readings, ReplySink& sink, const ReplyLimits& limits)
{
    LimitedWriter writer(sink, limits);
    sink.beginDictionary();
    for (const auto& [deviceKey, levels] : readings) {
        writer.writeKey(deviceKey);
        writer.write(levels);
    }
    sink.endDictionary();
}

} // namespace orv
