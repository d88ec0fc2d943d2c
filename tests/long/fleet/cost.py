"""Measures what panels cost the computer that looks after them. fleet.sh --cost runs it."""

import sys

from fleettest import COUNT, everything

COUNTS = [count for count in (1, 10, 50, 100) if count <= COUNT]
FAR = 1000


def line_through(points):
    """The line with the least squares through points: its height at 0, and its slope."""
    mean_x = sum(x for x, _ in points) / len(points)
    mean_y = sum(y for _, y in points) / len(points)
    slope = sum((x - mean_x) * (y - mean_y) for x, y in points) / sum(
        (x - mean_x) ** 2 for x, _ in points
    )
    return mean_y - slope * mean_x, slope


def measure(role, packages=(None,) * len(COUNTS), changes=False):
    """The cost of a role with each count of panels, and with a package for each."""
    plant, desk = everything()
    costs = []
    for count, package in zip(COUNTS, packages):
        names = [panel.name for panel in plant.panels[:count]]
        variables = {"application_package": package} if package else {}
        run = desk.play(role, "--limit", ",".join(names), **variables)
        assert run.status == 0 and run.visited == names, run.output
        assert run.changed == (names if changes else []), run.output
        cost = run.cost
        print(f"{role}, {count}: {cost.seconds:.0f} s, {cost.processor:.1f} s of processor time,",
              f"{cost.peak:.0f} MB", file=sys.stderr, flush=True)
        costs.append(cost)
    return costs


def print_rows(what, costs):
    for name, unit, figures in (
        ("time", "s", [cost.seconds for cost in costs]),
        ("processor time", "s", [cost.processor for cost in costs]),
        ("peak memory", "MB", [cost.peak for cost in costs]),
    ):
        start, slope = line_through(list(zip(COUNTS, figures)))
        print(
            f"| {what}, {name}, {unit} | {' | '.join(f'{figure:.0f}' for figure in figures)} |"
            f" {start:.1f} + {slope:.2f} n | {start + slope * FAR:.0f} |",
            flush=True,
        )


def main():
    print(f"| | {' | '.join(map(str, COUNTS))} | line | {FAR} |")
    print("|---|" + "--:|" * (len(COUNTS) + 2), flush=True)
    print_rows("status", measure("status"))
    # Each count gets another package than the count before.
    packages = ["new.kpc", "old.kpc", "new.kpc", "old.kpc"][: len(COUNTS)]
    print_rows("application", measure("application", packages, changes=True))
    print_rows("application again", measure("application", packages[-1:] * len(COUNTS)))


if __name__ == "__main__":
    main()
