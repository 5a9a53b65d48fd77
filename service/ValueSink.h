#pragma once

#include "readings/Value.h"
#include "service/Replies.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orv {

/// A reply kept as a value, for clients of ours.
class ValueSink final : public ReplySink {
public:
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

    /// The finished reply.
    Value take() { return std::move(finished); }

private:
    struct Container {
        std::vector<Member> members; // an array's have no keys
        std::string key;
    };
    void add(Value value);
    void endContainer(Value value);

    std::vector<Container> open;
    Value finished;
};

} // namespace orv
