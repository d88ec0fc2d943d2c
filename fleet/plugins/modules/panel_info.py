#!/usr/bin/python
"""Tells what a panel is, what it has, and how it is."""

DOCUMENTATION = r"""
module: panel_info
short_description: What a panel is, what it has, and how it is
description:
  - Reads the version files, the Debian packages and the record of the application.
  - Asks C(talmero-doctor) for its findings.
options:
  doctor:
    description: Runs C(talmero-doctor), which takes a second or more.
    type: bool
    default: false
author: TALMERO (@talmero)
attributes:
  check_mode:
    description: Changes nothing.
    support: full
"""

EXAMPLES = r"""
- name: Ask the panel
  talmero.panels.panel_info:
    doctor: true
  register: panel
"""

RETURN = r"""
versions:
  description: The panel's model, its OEM, and the versions of the HMI runtime and of the BIOS folder,
    as their files have them; empty if there is no file.
  returned: always
  type: dict
  sample: {"model": "RV-K21T", "oem": "TALMERO", "runtime": "12", "bios": "3"}
packages:
  description: The versions of the panel's own Debian packages. The status follows if the package
    was interrupted, such as "1.1 unpacked".
  returned: always
  type: dict
  sample: {"talmero-bios": "1.0"}
application:
  description: The record of the application; empty if it was installed in another way.
  returned: always
  type: dict
  sample: {"digest": "5f2c...", "file": "line1.kpc"}
free:
  description: The bytes that are free for an application.
  returned: always
  type: int
doctor:
  description: What C(talmero-doctor) found, without what is ok.
  returned: when doctor is true
  type: dict
  sample: {"status": 1, "errors": [], "warnings": ["space: 12 MiB are free"]}
"""

import json

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.talmero.panels.plugins.module_utils import installed, panel, report


def packages(module):
    """The versions of the panel's packages; none if there is no dpkg."""
    query = [
        "dpkg-query",
        "--show",
        "--showformat=${db:Status-Status} ${Package} ${Version}\\n",
        "talmero-*",
    ]
    return report.parse_packages(panel.run(module, query)[1])


def ask_doctor(module):
    """What talmero-doctor finds; fails if it does not run."""
    status, output, errors = panel.run(module, ["talmero-doctor", "--json"])
    try:
        return report.summary(json.loads(output))
    except ValueError:
        return module.fail_json(
            msg=f"talmero-doctor: {panel.last_line(errors, output)}", status=status
        )


def main():
    """Runs the module."""
    module = AnsibleModule(
        argument_spec={"doctor": {"type": "bool", "default": False}}, supports_check_mode=True
    )
    result = {
        "versions": panel.read_versions(),
        "packages": packages(module),
        "application": installed.read_record(),
        "free": installed.free_space(),
    }
    if module.params["doctor"]:
        result["doctor"] = ask_doctor(module)
    module.exit_json(changed=False, **result)


if __name__ == "__main__":
    main()
