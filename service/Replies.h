#pragma once

#include "readings/Readings.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orv {

/// Receives a reply piece by piece, in the form of the platform: every value of a dictionary follows its key.
class ReplySink {
public:
    virtual ~ReplySink() = default;

    virtual void beginDictionary() = 0;
    virtual void key(std::string_view key) = 0;
    virtual void endDictionary() = 0;
    virtual void beginArray() = 0;
    virtual void endArray() = 0;

    virtual void text(std::string_view text) = 0; // valid UTF-8
    virtual void real(double number) = 0;
    virtual void integer(std::int64_t number) = 0;
    virtual void natural(std::uint64_t number) = 0;
    virtual void boolean(bool truth) = 0;
};

/// What a transport cannot carry of a watch file, and is therefore left out or replaced.
struct ReplyLimits {
    std::size_t depth = SIZE_MAX; // a value inside this many containers of its entry is the deepest
    bool noncharacters = true; // otherwise a NUL or a noncharacter in a text becomes U+FFFD; of keys that this makes
                               // equal the first is kept
};

inline constexpr ReplyLimits propertyListLimits{};
/// The D-Bus daemon drops a peer that sends such texts, or variants nested more than 20 deep.
inline constexpr ReplyLimits messageBusLimits{.depth = 16, .noncharacters = false};

/// Whether a value has a form in a reply; one that has none is left out, at any depth. A null has none.
bool hasReplyForm(const Value& value);

/// Sensor code to a dictionary of "title", "type", "unit", "value" and, for fans, "minvalue" and "maxvalue".
void writeThermalReply(const ThermalDictionary& readings, ReplySink& sink);

/// Device key to its levels. A null, which no reply can carry, is left out at any depth.
void writeBluetoothReply(const BluetoothBatteryDictionary& readings, ReplySink& sink, const ReplyLimits& limits);

} // namespace orv
