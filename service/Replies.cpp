#include "service/Replies.h"

#include "readings/Text.h"

#include <algorithm>
#include <set>
#include <string>
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

    /// Of members whose keys are replaced by the same text the first is written.
    template <typename Members> void writeMembers(const Members& members)
    {
        const auto isReplaced = [](const auto& member) {
            const auto& [key, value] = member;
            return textWithoutNoncharacters(key) != key;
        };
        const bool mayCollide = !limits.noncharacters && std::any_of(members.begin(), members.end(), isReplaced);
        std::set<std::string> written;
        sink.beginDictionary();
        for (const auto& [key, value] : members) {
            if (!canCarry(value))
                continue;
            const auto replaced = limits.noncharacters ? std::string() : textWithoutNoncharacters(key);
            const std::string_view carried = limits.noncharacters ? key : replaced;
            if (mayCollide && !written.emplace(carried).second)
                continue;
            sink.key(carried);
            write(value);
        }
        sink.endDictionary();
    }

    void write(const Dictionary& dictionary)
    {
        const Nesting nesting(*this);
        writeMembers(dictionary);
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

    static bool canCarry(const Dictionary&) { return true; } // an entry
    bool canCarry(const Value& value) const { return hasReplyForm(value) && depth <= limits.depth; }

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

bool hasReplyForm(const Value& value)
{
    return !std::holds_alternative<std::nullptr_t>(value.data);
}

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
    LimitedWriter(sink, limits).writeMembers(readings);
}

} // namespace orv
