#include "orvctl/views/Selection.h"

#include <set>

namespace orv {

namespace {

bool passes(Verdict verdict, Filter filter)
{
    return filter == Filter::all || (filter == Filter::shown) == (verdict == Verdict::shown);
}

template <typename Row>
std::vector<std::size_t> places(const std::vector<Row>& rows, const std::vector<Answer>& answers,
    std::vector<std::size_t> Answer::* wanted, Filter filter)
{
    std::set<std::size_t> asked;
    for (const auto& answer : answers)
        asked.insert((answer.*wanted).begin(), (answer.*wanted).end());
    std::vector<std::size_t> result;
    for (std::size_t place = 0; place < rows.size(); ++place) {
        if ((answers.empty() || asked.contains(place)) && passes(rows[place].verdict, filter))
            result.push_back(place);
    }
    return result;
}

} // namespace

Selection select(const Explanation& explanation, const std::vector<Answer>& answers, Filter filter)
{
    return {places(explanation.sensors, answers, &Answer::sensors, filter),
        places(explanation.bluetooth, answers, &Answer::devices, filter),
        places(explanation.watch, answers, &Answer::watch, filter)};
}

} // namespace orv
