"""The documents: what their shell blocks do and print, and where their links lead.

A block marked "sh" runs as it stands, all of a page's in order in one shell, where build/release/bin holds the programs. A
block marked "console" cannot run here. A block marked "text" right after one that runs is what that prints; "…" stands for
any text, on a line of its own for any lines. A block marked "cpp" stands so in the file that is named last before it.
"""

import re
import subprocess
import unittest

from support import BIN, MACHINES, PATIENCE, ProcessTest

ROOT = MACHINES.parent
PAGES = sorted([*ROOT.glob("*.md"), *(ROOT / "docs").glob("**/*.md")])
LANGUAGES = {"sh", "yaml", "console", "text", "json", "ini", "c", "cpp", "objc", "swift", "python"}
BLOCK = re.compile(r"^```(.*)\n((?:.*\n)*?)```$(?:\s*^```text\n((?:.*\n)*?)```$)?", re.MULTILINE)
PROSE = re.compile(r"^```.*\n(?:.*\n)*?```$", re.MULTILINE)


def anchor(heading):
    """Of a heading, as the sites make it that show Markdown."""
    return re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")


def pattern(expected):
    lines = expected.splitlines(keepends=True)
    return "".join("(?:.*\n)*" if line.strip() == "…" else re.escape(line).replace("…", ".*") for line in lines)


class DocumentsTest(ProcessTest):
    def setUp(self):
        super().setUp()
        self.checkout = self.folder / "checkout"
        self.checkout.mkdir()
        for name in "machines", "recordings", "examples", "packaging":
            (self.checkout / name).symlink_to(ROOT / name)
        (self.checkout / "build/release").mkdir(parents=True)
        (self.checkout / "build/release/bin").symlink_to(BIN)
        self.environment["HOME"] = str(self.folder)

    def run_blocks(self, page):
        """What each block of a page prints, beside what it says that it prints."""
        blocks = [(block[2], block[3]) for block in BLOCK.finditer(page.read_text()) if block[1] == "sh"]
        mark = "-- end of a block --"
        script = "".join(f"{block}echo {mark!r}\n" for block, _ in blocks)
        shell = self.start("bash", "-e", cwd=self.checkout, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                           stderr=subprocess.STDOUT)
        printed = shell.communicate("trap 'kill $(jobs -p) 2>/dev/null || :' EXIT\n" + script, timeout=3 * PATIENCE)[0]
        self.assertEqual(shell.returncode, 0, printed)
        return [(block, expected, each) for (block, expected), each in zip(blocks, printed.split(mark + "\n"))]

    def test_shell_blocks_do_what_the_page_says(self):
        for page in PAGES:
            with self.subTest(page=page.name):
                for block, expected, printed in self.run_blocks(page):
                    if expected is not None:
                        self.assertRegex(printed, rf"\A{pattern(expected)}\Z", block)

    def test_every_block_says_what_it_is(self):
        for page in PAGES:
            text = page.read_text()
            self.assertEqual({block[1] for block in BLOCK.finditer(text)} - LANGUAGES, set(), page.name)
            self.assertNotRegex(PROSE.sub("", text), r"(?m)^\n {4}\S", page.name)  # a block without a mark

    def test_changelog_is_of_this_version(self):
        log = (ROOT / "CHANGELOG.md").read_text()
        version, day = re.search(r"^## (\S+) – (\d{4}-\d\d-\d\d)$", log, re.MULTILINE).groups()
        self.assertEqual(self.orvctl("--version"), f"orvctl {version}\n")
        self.assertIn(f"set(ORV_RELEASE_DATE {day})", (ROOT / "CMakeLists.txt").read_text())

    def test_quoted_code_stands_where_it_is_said_to(self):
        for page in PAGES:
            file = None
            for quoted in re.finditer(r"\[[^\]]+\]\(([^)\s]+\.(?:cpp|h))\)|^```cpp\n((?:.*\n)*?)```$", page.read_text(), re.MULTILINE):
                file = quoted[1] or file
                if quoted[2]:
                    self.assertIn(quoted[2], (page.parent / file).read_text(), file)

    def test_links_lead_somewhere(self):
        headings = {page: {anchor(heading) for heading in re.findall(r"^#+ (.*)", PROSE.sub("", page.read_text()), re.MULTILINE)}
                    for page in PAGES}
        reached = {ROOT / "README.md"}
        for page in PAGES:
            for target in re.findall(r"""(?:\]\(|href="|src="|srcset=")([^)\s"]+)""", PROSE.sub("", page.read_text())):
                if "://" in target:
                    continue
                path, _, fragment = target.partition("#")
                file = (page.parent / path).resolve() if path else page
                self.assertTrue(file.exists(), f"{page.name}: {target}")
                reached.add(file)
                if fragment:
                    self.assertIn(fragment, headings[file], f"{page.name}: {target}")
        self.assertEqual(set(PAGES) - reached, set())


if __name__ == "__main__":
    unittest.main()
