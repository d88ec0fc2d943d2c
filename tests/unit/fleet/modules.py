"""The collection's functions for the tests: those that need no Ansible."""

import importlib
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "fleet/plugins/module_utils"))
changes, installed, panel, report = map(
    importlib.import_module, ("changes", "installed", "panel", "report")
)
