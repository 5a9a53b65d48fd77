#pragma once

#import <Foundation/Foundation.h>

#include "service/Replies.h"

#include <cstddef>
#include <vector>

namespace orv {

/// Builds a reply of Foundation's objects. The dictionaries of its outermost levels are mutable, everything further
/// in is immutable.
class CocoaReplySink final : public ReplySink {
public:
    explicit CocoaReplySink(std::size_t mutableLevels);

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
    NSMutableDictionary* take() { return finished; }

private:
    struct Container {
        NSMutableDictionary* dictionary; // either this
        NSMutableArray* array; // or this
        NSString* key; // the latest of a dictionary
    };
    void add(id value);

    const std::size_t mutableLevels;
    std::vector<Container> open;
    NSMutableDictionary* finished = nil;
};

} // namespace orv
