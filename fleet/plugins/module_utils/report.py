"""Reads what dpkg-query and talmero-doctor print."""


# What dpkg says of a package that is not there.
ABSENT = ("not-installed", "config-files")


def parse_packages(output):
    """The versions of the packages in lines of status, name and version.

    The status follows the version of a package that was interrupted, such as "1.1 unpacked".
    """
    fields = [line.split(" ") for line in output.splitlines()]
    return {
        name: version if status == "installed" else f"{version} {status}".strip()
        for status, name, version in (field for field in fields if len(field) == 3)
        if status not in ABSENT
    }


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
