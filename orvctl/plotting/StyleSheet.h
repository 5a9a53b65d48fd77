#pragma once

#include <cstddef>
#include <string_view>

namespace orv {

/// How many colours lines have; further ones are dashed in turn.
inline constexpr std::size_t lineColours = 12;
inline constexpr std::size_t lineDashes = 3;

/// The classes of a plot's elements, for a light and a dark page. Lines have one of c0 to c11 and one of d0 to d2.
inline constexpr std::string_view plotStyleSheet = R"(
svg { font-family: system-ui, "Segoe UI", "DejaVu Sans", Helvetica, Arial, sans-serif; font-size: 12px }
.paper { fill: #ffffff }
.title { fill: #1f2328; font-size: 15px; font-weight: 600 }
.caption { fill: #1f2328; font-weight: 600 }
.name { fill: #1f2328 }
.label { fill: #59636e }
.middle { text-anchor: middle }
.end { text-anchor: end }
.grid { stroke: #e4e7eb; fill: none }
.frame { stroke: #b7bec7; fill: none }
.sleep { fill: #e9ecf1 }
.line { fill: none; stroke-width: 1.6; stroke-linejoin: round; stroke-linecap: round }
.c0 { stroke: #d1242f } .c1 { stroke: #0969da } .c2 { stroke: #1a7f37 } .c3 { stroke: #8250df }
.c4 { stroke: #bc4c00 } .c5 { stroke: #0c8599 } .c6 { stroke: #c2257f } .c7 { stroke: #8a6d00 }
.c8 { stroke: #4c5bd4 } .c9 { stroke: #5f7d13 } .c10 { stroke: #795548 } .c11 { stroke: #57606a }
.d1 { stroke-dasharray: 7 4 } .d2 { stroke-dasharray: 2 4 }
@media (prefers-color-scheme: dark) {
.paper { fill: #0d1117 }
.title, .caption, .name { fill: #e6edf3 }
.label { fill: #9198a1 }
.grid { stroke: #262c34 }
.frame { stroke: #545d68 }
.sleep { fill: #1e2530 }
.c0 { stroke: #ff7b72 } .c1 { stroke: #6cb6ff } .c2 { stroke: #56d364 } .c3 { stroke: #d2a8ff }
.c4 { stroke: #ffa657 } .c5 { stroke: #56d4dd } .c6 { stroke: #ff8ac2 } .c7 { stroke: #e3b341 }
.c8 { stroke: #9aa5ff } .c9 { stroke: #b5d56a } .c10 { stroke: #d0a999 } .c11 { stroke: #b1bac4 }
}
)";

} // namespace orv
