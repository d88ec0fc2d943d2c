"""What the modules know of a panel: its files, and how its programs are run."""

# The session's PATH: the compat tools come first, because the program reads what they print.
PATH = "/usr/lib/talmero-bios/compat/bin:/usr/local/bin:/usr/bin:/usr/sbin:/sbin:/bin"

PANEL_FOLDER = "/opt/talmero/bios"

# Files of one line, by what they say.
VERSION_FILES = {
    "model": "model",
    "oem": "oem",
    "runtime": "fwver",
    "bios": "bios.version",
}


def first_line(text):
    """The first line of bytes, as text without its end; bytes that are not UTF-8 are replaced."""
    return text.split(b"\n", 1)[0].decode("utf-8", "replace").rstrip("\r")


def read_first_line(path):
    """The first line of a file; an empty text if it cannot be read."""
    try:
        with open(path, "rb") as file:
            return first_line(file.read(1024))
    except OSError:
        return ""


def read_versions(folder=PANEL_FOLDER):
    """What the files in the panel's folder say: a dictionary with the keys of VERSION_FILES."""
    return {name: read_first_line(f"{folder}/{file}") for name, file in VERSION_FILES.items()}


def run(module, arguments):
    """Runs a program of the panel with the session's PATH. Result: status, output, errors."""
    return module.run_command(arguments, environ_update={"PATH": PATH, "LC_ALL": "C.UTF-8"})


def last_line(errors, output):
    """The line that says why a program failed, without the program's name."""
    lines = [line for line in (errors or output).splitlines() if line.strip()]
    if not lines:
        return "no message"
    name, separator, reason = lines[-1].partition(": ")
    return reason if separator and name.startswith("talmero-") else lines[-1]
