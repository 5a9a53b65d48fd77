"""What a measure returns: rows, each a figure beside its floor, and whether the goal holds."""

import dataclasses


@dataclasses.dataclass
class Row:
    what: str
    does: str  # what the floor does, or what the figure is counted against
    figure: str
    floor: str
    value: float
    must: float | None  # none: beside the others, for information
    unit: str = "times"

    @property
    def verdict(self):
        if self.must is None:
            return "beside"
        return "holds" if self.value <= self.must else "falls short"

    def cells(self):
        return [self.what, self.does, self.figure, self.floor, f"{self.value:.6g} {self.unit}".strip(),
                "" if self.must is None else f"{self.must:g}", self.verdict]


HEADINGS = ["what", "its floor", "figure", "floor", "ratio", "must", ""]


def ratio(what, does, figure, floor, must, unit="us"):
    return Row(what, does, f"{figure:.4g} {unit}", f"{floor:.4g} {unit}", round(figure / floor, 3), must)


def exactly(what, does, figure, expected):
    """A count that must be met, neither more nor less."""
    return Row(what, does, f"{figure:g}", f"{expected:g}", abs(figure - expected), 0, unit="off")


def at_most(what, does, figure, most, unit=""):
    return Row(what, does, f"{figure:g}", "", figure, most, unit)
