#!/usr/bin/python
"""Installs an application package on a panel, and confirms it."""

DOCUMENTATION = r"""
module: application
short_description: Install an application on a panel
description:
  - Installs a package with C(talmero-install), unless the panel has that application.
  - Confirms that everything in the package is on the panel with the same contents, then makes it
    durable and records the digest of the package.
  - The record lies in the folder that each installation removes first. So it is gone as soon as
    somebody installs another application, from a stick for example.
options:
  package:
    description: The package, on the panel. Not needed in check mode.
    type: path
    required: true
  digest:
    description: The SHA-256 of the package, in hexadecimal digits.
    type: str
    required: true
  file:
    description: The name of the package for people, which the record keeps.
    type: str
    required: true
  restart_session:
    description: Restarts the panel's session if it runs, so that the HMI runtime starts with the
      new application.
    type: bool
    default: true
author: TALMERO (@talmero)
attributes:
  check_mode:
    description: Says whether the package would be installed.
    support: full
"""

EXAMPLES = r"""
- name: Install the application
  talmero.panels.application:
    package: /tmp/line1.kpc
    digest: "{{ digest }}"
    file: line1.kpc
"""

RETURN = r"""
before:
  description: The record of the application that was there; empty if nobody knows what was there.
  returned: always
  type: dict
  sample: {"digest": "5f2c...", "file": "line1.kpc"}
"""

import os

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.talmero.panels.plugins.module_utils import installed, panel


def install(module, package, digest):
    """Installs the package; fails with one line that says why not."""
    if installed.digest_of_path(package) != digest:
        module.fail_json(msg=f"{package} is not the package with the digest {digest}")
    status, output, errors = panel.run(module, ["talmero-install", package])
    if status != 0:
        module.fail_json(msg=panel.last_line(errors, output), status=status)
    difference = installed.first_difference(package)
    if difference is not None:
        module.fail_json(msg=f"the application is not complete: {difference} is missing or differs")


def restart_session(module):
    """Restarts the panel's session if it runs."""
    status, output, errors = panel.run(
        module, ["systemctl", "try-restart", "talmero-session.service"]
    )
    if status != 0:
        module.fail_json(msg=f"the session cannot be restarted: {panel.last_line(errors, output)}")


def main():
    """Runs the module."""
    module = AnsibleModule(
        argument_spec={
            "package": {"type": "path", "required": True},
            "digest": {"type": "str", "required": True},
            "file": {"type": "str", "required": True},
            "restart_session": {"type": "bool", "default": True},
        },
        supports_check_mode=True,
    )
    digest = module.params["digest"]
    before = installed.read_record()
    changed = before.get("digest") != digest
    if changed and not module.check_mode:
        install(module, module.params["package"], digest)
        if module.params["restart_session"]:
            restart_session(module)
        os.sync()  # the record must not be on the disk before the application
        installed.write_record({"digest": digest, "file": module.params["file"]})
    module.exit_json(changed=changed, before=before)


if __name__ == "__main__":
    main()
