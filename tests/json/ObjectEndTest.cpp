#include "json/ObjectEnd.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

using namespace orv;

// However the text is cut into pieces, the object ends at the same place.
TEST(ObjectEnd, IsWhereItsLastBraceCloses)
{
    struct Case {
        std::string_view text;
        std::optional<std::size_t> end;
    };
    const Case cases[]{{"{}", 2}, {" \t\r{} {}", 5}, {R"({"a": [{}, [1]], "b": {}} rest)", 25}, {R"({"}": "]"} })", 10},
        {R"({"\"}": "\\"})", 13}, {R"({"a\\\"}": 1}})", 13}, {"", {}}, {"{[}", {}}, {R"({"})", {}}, {R"({"\"})", {}},
        {"[]", {}}, {"x{}", {}}, {R"("{}")", {}}, {"]{}", {}}};
    for (const auto& [text, end] : cases) {
        for (std::size_t size = 1; size <= text.size() + 1; ++size) {
            ObjectEnd finder;
            std::optional<std::size_t> found;
            for (std::size_t place = 0; place < text.size() && !found; place += size) {
                const auto piece = text.substr(place, size);
                if (const auto rest = finder.find(piece))
                    found = place + piece.size() - rest->size();
            }
            EXPECT_EQ(found, end) << text << " in pieces of " << size;
        }
    }
}
