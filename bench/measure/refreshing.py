"""What a refresh costs."""

from rows import at_most, exactly, ratio


def code(bench):
    quickest = bench.quickest("bench-code")
    refresh, once = quickest["refreshAndReply"], quickest["exchangesOfOneRefresh"]
    rows = [ratio("refresh of 66 keys and its reply body", "a loop of the same exchanges and entries appended by hand",
                  refresh["cpu_time"], quickest["bareLoop"]["cpu_time"], 1.6),
            at_most("allocations an entry of that", "counted in operator new",
                    round(refresh["allocationsPerEntry"], 3), 3),
            exactly("exchanges of a refresh", "two a key", refresh["exchanges"], 2 * 66),
            exactly("exchanges of the first refresh", "two a key, those of the count, and count + 1", once["first"],
                    2 * 66 + 2 + 67),
            exactly("exchanges of a request", "", once["request"], 0)]
    for size in ("20000", "2000000"):
        reader, document = quickest["reportReader/" + size], quickest["documentOfReport/" + size]
        rows.append(ratio(f"report reader on {int(size) // 1000} KB", "nlohmann's document of the same bytes",
                          reader["cpu_time"], document["cpu_time"], 1))
        rows.append(ratio("the same, most heap", "the document's", reader["peakHeap"] / 1024,
                          document["peakHeap"] / 1024, 1, unit="KiB"))
    return rows


def host(bench):
    quickest = bench.quickest("bench-host")
    time_of = {name: each["cpu_time"] for name, each in quickest.items()}
    return [ratio("refresh through the kernel driver's 66 files",
                  "66 preads, the decimal numbers parsed, the same entries made by hand",
                  time_of["refreshThroughFiles"], time_of["entriesByHand"], 1.3),
            ratio("the same", "libsensors reading those files", time_of["refreshThroughFiles"],
                  time_of["libsensorsOnFiles"], None),
            ratio("refresh through key_at_index", "the same three calls a key, nothing parsed",
                  time_of["refreshThroughIndex"], time_of["threeCallsAKey"], 1.6)]


def instructions(bench):
    def row(what, does, work, floor, must):
        return ratio(what, does, bench.instructions(work) / 1000, bench.instructions(floor) / 1000, must,
                     unit="thousand")

    return [row("report reader on 20 KB, instructions", "nlohmann's document of the same bytes", "reportReader",
                "documentOfReport", 1),
            row("refresh through 66 files, instructions outside the kernel", "the same entries made by hand",
                "refreshThroughFiles", "entriesByHand", None)]
