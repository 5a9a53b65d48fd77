"""The helper on the machine it runs on: a tree of files is its /sys and /proc."""

import pathlib
import re
import shutil

from support import BIN, ProcessTest, plain

APPLESMC = "sys/devices/platform/applesmc.768"
INTEL = "processor\t: 0\nmodel name\t: Intel(R) Core(TM) i7\n"


class HostTest(ProcessTest):
    prefix = ()

    def setUp(self):
        super().setUp()
        self.folder.chmod(0o755)
        # A copy, because what is installed beside the program counts, and others than the builder may run it.
        self.program = self.copy(BIN / "orv-smc-helper", "bin")
        self.profiler = self.copy(BIN.parent / "libexec/orv/system_profiler", "libexec/orv")
        self.root = self.folder / "root"
        self.root.mkdir()
        self.system_address = f"unix:path={self.folder}/system-bus".replace(" ", "%20")
        self.environment |= {"ORV_ROOT": str(self.root), "DBUS_SYSTEM_BUS_ADDRESS": self.system_address,
                             "XDG_DATA_HOME": str(self.folder / "data")}
        # The sources may lie where nobody else can read.
        options = self.environment.get("TSAN_OPTIONS", "")
        if named := re.search(r"suppressions='([^']*)'", options):
            self.environment["TSAN_OPTIONS"] = options.replace(named[1], str(self.copy(named[1], "bin")))

    def start(self, *command, **options):
        return super().start(*self.prefix, *command, **options)

    def run_program(self, *command):
        return super().run_program(*self.prefix, *command)

    def copy(self, program, folder):
        (self.folder / folder).mkdir(parents=True, exist_ok=True)
        return pathlib.Path(shutil.copy(program, self.folder / folder))

    def write(self, files):
        for path, content in files.items():
            file = self.root / path
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(content)
            file.chmod(0o644 if file.name == "key_at_index" else 0o444)

    def write_intel(self, **files):
        self.write({"sys/class/dmi/id/product_name": "MacBookPro11,4\n", "proc/cpuinfo": INTEL})
        self.write({f"{APPLESMC}/{name}": content for name, content in files.items()})

    def start_host(self):
        self.start_helper(None, self.program)

    def thermal(self):
        return plain(self.ask("getModelDatawithReply"))
