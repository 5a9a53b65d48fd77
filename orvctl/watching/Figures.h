#pragma once

#include "orvctl/watching/Moment.h"

#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// One number of a moment: a temperature, the speed of a fan or one battery level. Texts are of one line.
struct Figure {
    std::string key; // of the sensor, the fan or the device
    std::string title; // a level's is its kind
    std::string_view unit; // "celsius", "rpm" or "percent"
    double value = 0;
    Value given; // the same, as the reply has it
    double least = 0; // of a fan's speeds
    double most = 0;
};

/// As JSON has it, or "inf" or "-inf".
std::string exactText(const Figure& figure);

/// All figures of both replies, by kind and key.
std::vector<Figure> allFigures(const Dictionary& thermal, const Dictionary& bluetooth);

/// The chosen figures in the order in which they were chosen; without a choice by kind and key.
std::vector<Figure> figuresOf(const Moment& moment);

/// Whether a name given with --only means this entry: it is its key or its title.
bool isNamed(const Member& entry, std::string_view name);
bool isNamed(const Figure& figure, std::string_view name);

} // namespace orv
