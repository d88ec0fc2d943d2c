#!/usr/bin/python
"""Stores settings of a panel, and applies them."""

DOCUMENTATION = r"""
module: settings
short_description: Store settings of a panel
description:
  - Stores settings with C(talmero-settings), which refuses what no page of the panel could have stored.
  - All settings are checked before the first is stored.
options:
  settings:
    description:
      - Keys of C(bios.ini) and their values. Null or an empty text removes the key.
      - Quote values that YAML reads as something else than a text or a number.
    type: dict
    default: {}
  force:
    description: Stores any key, and any value that the file can hold.
    type: bool
    default: false
  apply:
    description:
      - Applies what was stored and is not applied yet. This restarts the panel's session.
    type: bool
    default: false
author: TALMERO (@talmero)
attributes:
  check_mode:
    description: Says what would change, and refuses what would be refused.
    support: full
  diff_mode:
    description: Shows the settings before and after.
    support: full
"""

EXAMPLES = r"""
- name: Dim the screen, and let nobody hear the buzzer
  talmero.panels.settings:
    settings:
      bios.brightness: 0.7
      app.buzzer: null

- name: Let the panel use its new settings
  talmero.panels.settings:
    apply: true
"""

RETURN = r"""
changes:
  description: What was changed.
  returned: always
  type: list
  elements: dict
  sample: [{"key": "bios.brightness", "before": "1", "after": "0.7"}]
pending:
  description: Whether there are settings that are stored and not applied.
  returned: always
  type: bool
applied:
  description: What C(talmero-settings apply) said.
  returned: when settings were applied
  type: str
"""

import json
import os

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.talmero.panels.plugins.module_utils import changes, panel

# Stays when the connection is lost before the settings are applied. A restart of the panel applies
# them and empties /run.
PENDING = "/run/talmero-settings.pending"


def talmero_settings(module, arguments):
    """Runs talmero-settings; fails in its words. Result: what it printed."""
    status, output, errors = panel.run(module, ["talmero-settings", *arguments])
    if status != 0:
        module.fail_json(msg=panel.last_line(errors, output), status=status)
    return output


def wanted_settings(module):
    """The module's settings as texts; fails if one has no text."""
    wanted = {}
    for key, value in module.params["settings"].items():
        try:
            wanted[key] = changes.text_of(value)
        except ValueError as error:
            module.fail_json(msg=f"{key}: {error}")
    return wanted


def store(module, wanted):
    """Stores what differs. Result: the changes, and the settings before and after."""
    stored = json.loads(talmero_settings(module, ["list", "--json"]))
    found = changes.wanted_changes(stored, wanted)
    options = ["--force"] if module.params["force"] else []
    for change in found:
        talmero_settings(module, changes.command_for(change, [*options, "--dry-run"]))
    if found and not module.check_mode:
        with open(PENDING, "w", encoding="utf-8"):
            pass
        for change in found:
            talmero_settings(module, changes.command_for(change, options))
    diff = {
        "before": changes.lines_of(stored),
        "after": changes.lines_of(changes.after_changes(stored, found)),
    }
    return found, diff


def main():
    """Runs the module."""
    module = AnsibleModule(
        argument_spec={
            "settings": {"type": "dict", "default": {}},
            "force": {"type": "bool", "default": False},
            "apply": {"type": "bool", "default": False},
        },
        supports_check_mode=True,
    )
    found, diff = store(module, wanted_settings(module))
    pending = os.path.exists(PENDING)
    result = {"changed": bool(found), "changes": found, "pending": pending, "diff": diff}
    if module.params["apply"] and pending:
        result["changed"] = True
        if not module.check_mode:
            result["applied"] = talmero_settings(module, ["apply"]).strip()
            os.remove(PENDING)
            result["pending"] = False
    module.exit_json(**result)


if __name__ == "__main__":
    main()
