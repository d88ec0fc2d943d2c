"""Measures what panels cost the computer that looks after them. fleet.sh --cost runs it."""

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


def measure(play):
    """The cost of a play with each count of panels. play: gets their names."""
    plant, _ = everything()
    costs = []
    for count in COUNTS:
        run = play(",".join(panel.name for panel in plant.panels[:count]))
        assert run.status == 0 and len(run.visited) == count, run.output
        costs.append(run.cost)
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
    _, desk = everything()
    print(f"| | {' | '.join(map(str, COUNTS))} | line | {FAR} |")
    print("|---|" + "--:|" * (len(COUNTS) + 2), flush=True)
    print_rows("status", measure(lambda names: desk.play("status", "--limit", names)))
    print_rows(
        "application",
        measure(
            lambda names: desk.play(
                "application", "-e", "application_package=new.kpc", "--limit", names
            )
        ),
    )
    print_rows(
        "application again",
        measure(
            lambda names: desk.play(
                "application", "-e", "application_package=new.kpc", "--limit", names
            )
        ),
    )


if __name__ == "__main__":
    main()
