#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orv {

/// What a simulated Intel Mac to measure is made of.
struct CatalogueMac {
    std::size_t temperatures = 57; // of the catalogue, each with a title of its own
    std::size_t fans = 3; // of three keys each
    std::size_t otherKeys = 0; // that no refresh reads
    bool stepping = false; // every temperature moves on with each read, all in step
    double exchangeDelay = 0; // milliseconds

    /// The text of its machine file.
    std::string text() const;
    /// Its keys, in their order.
    std::vector<std::string> keys() const;
};

} // namespace orv
