#include "explain/QuestionWords.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <span>
#include <string_view>

namespace orv {

namespace {

constexpr std::array<std::string_view, 26> fillers{"where", "what", "which", "why", "how", "when", "does", "did", "do",
    "is", "are", "isn", "there", "here", "the", "my", "our", "its", "not", "no", "show", "shown", "have", "has", "of",
    "missing"};
// They say what of a thing is asked for, unless they are all that is asked for.
constexpr std::array<std::string_view, 5> aspects{"battery", "level", "temperature", "sensor", "speed"};

bool isAmong(std::span<const std::string_view> words, std::string word)
{
    std::ranges::transform(word, word.begin(), [](unsigned char each) { return std::tolower(each); });
    return std::ranges::find(words, word) != words.end();
}

} // namespace

std::vector<std::string> questionWords(const std::string& question)
{
    constexpr std::string_view separators = " ,;:.?!\"'";
    std::vector<std::string> words;
    for (std::size_t start = 0; start < question.size();) {
        const auto end = std::min(question.find_first_of(separators, start), question.size());
        auto word = question.substr(start, end - start);
        if (word.size() > 1 && !isAmong(fillers, word))
            words.push_back(std::move(word));
        start = end + 1;
    }
    const auto isAspect = [](const std::string& word) { return isAmong(aspects, word); };
    if (!std::ranges::all_of(words, isAspect))
        std::erase_if(words, isAspect);
    return words;
}

} // namespace orv
