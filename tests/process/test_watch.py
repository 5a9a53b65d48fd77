"""The watch file."""

import time
import unittest

from support import ProcessTest, device, mac, report
from wire import BLUETOOTH, Client

WATCH = {"watch-1": {"name": "Watch", "batteryLevel": 80}}


class WatchFileTest(ProcessTest):
    def start_watching(self, **members):
        self.start_helper(mac(watch=WATCH, **members))
        self.watch_file, = self.temporary.glob("orv-smc-helper-*/Library/Application Support/applewatchbt.json")
        self.original = self.watch_file.read_bytes()

    def read_next(self, content):
        """Puts content, or nothing, in place of what the companion wrote, and returns when the helper has read it:
        only then the companion is launched, and so writes, again."""
        if content is None:
            self.watch_file.unlink()
        else:
            unfinished = self.watch_file.with_name("test")
            unfinished.write_bytes(content)
            unfinished.rename(self.watch_file)
        self.until(lambda: self.wake() or self.watch_file.exists() and self.watch_file.read_bytes() == self.original)

    def test_reply_merges_both_sources_as_the_tool_does(self):
        self.start_watching(bluetooth=report(70))
        started = time.monotonic()
        self.until(lambda: self.levels() == {**device(70), **WATCH})
        self.assertGreater(time.monotonic() - started, 3)  # not before the companion had its time
        self.assertEqual(self.orvctl("bluetooth", "--json"),
                         self.orvctl("bluetooth", "--json", "--simulate", self.folder / "machine.json"))

    def test_entries_outlive_every_fault_of_the_file(self):
        self.start_watching()
        self.read_next(b'{"watch-2": {"level": 1.0, "charging": true, "large": 18446744073709551615, "none": null}}')
        entries = {"watch-2": {"level": {"type": "d", "data": 1.0}, "charging": {"type": "b", "data": True},
                               "large": {"type": "t", "data": 2**64 - 1}}}
        self.assertEqual(self.ask("getBTDataWithReply"), entries)
        for content in (None, b"", b'{"watch-3": {}, "count": 3}', b'{"w": {"a": ' + b"[" * 100_000):
            with self.subTest(content=content and content[:30]):
                self.read_next(content)
                self.assertEqual(self.ask("getBTDataWithReply"), entries)
        nested = '{"n": null, "a": [null, ' * 250 + "1" + "]}" * 250
        self.read_next(b'{"bad": {"deep": %s, "text": "a\\u0000b\\uffffc", "\\uffff": 1}, "good": {}}' % nested.encode())
        reply = self.levels()
        self.assertEqual((reply["good"], reply["bad"]["text"], reply["bad"]["\ufffd"]), ({}, "a\ufffdb\ufffdc", 1))

    def test_densest_file_that_is_read_makes_a_reply_that_the_bus_takes(self):
        self.start_watching()
        head, tail = b'{"watch-2": {"a": [', b"0]}}"
        self.read_next(head + b"0," * ((1024 * 1024 - len(head + tail)) // 2) + tail)
        client = Client(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(client.close)
        reply, = client.ask(BLUETOOTH)
        self.assertEqual((reply.error, len(reply.body) // 8_000_000), (None, 1))  # an integer takes 16 bytes


if __name__ == "__main__":
    unittest.main()
