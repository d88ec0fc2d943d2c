"""Reads what dpkg-query and talmero-doctor print."""


def parse_packages(output):
    """The versions of the installed packages in lines of status, name and version."""
    fields = [line.split() for line in output.splitlines()]
    return {field[1]: field[2] for field in fields if len(field) == 3 and field[0] == "installed"}


def findings(doctor, level):
    """The findings of one level as lines."""
    return [
        f"{item['check']}: {item['found']}" for item in doctor["findings"] if item["level"] == level
    ]


def summary(doctor):
    """What needs attention in the object that talmero-doctor --json prints."""
    return {
        "status": doctor["status"],
        "errors": findings(doctor, "error"),
        "warnings": findings(doctor, "warning"),
    }
