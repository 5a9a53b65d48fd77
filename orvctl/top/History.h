#pragma once

#include "orvctl/top/TopReading.h"
#include "platform/RunLoop.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace orv {

/// What was seen of one reading.
struct ReadingHistory {
    double lowest = 0; // since the history began; of finite values, otherwise both are 0
    double highest = 0;
    bool hasFinite = false;
    std::int64_t newest = 0; // the number of the last column
    std::deque<float> columns; // the highest value in each, not a number where there was none; oldest first
};

/// The last hour of all readings in columns of half a minute, and their extremes since it began.
class History {
public:
    static constexpr Seconds columnTime{30};
    static constexpr std::size_t mostColumns = 120;

    /// Adds what was measured at a time of any clock. A time before the last one counts as that.
    void take(const std::vector<TopReading>& readings, Seconds measuredAt);

    /// Nothing for a reading that was never taken.
    const ReadingHistory* find(const std::string& identity) const;

    /// The number of the column that grows.
    std::int64_t newestColumn() const { return newest; }

    /// The last columns of a reading, not a number where there was none; the newest, which still grows, last.
    std::vector<float> columns(const std::string& identity, std::size_t count) const;

private:
    std::map<std::string, ReadingHistory> series;
    std::int64_t newest = 0;
    bool hasBegun = false;
};

} // namespace orv
