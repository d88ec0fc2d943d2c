#!/usr/bin/env bash
# Checks the Ansible collection: the functions of its modules, its playbooks and its style.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

(cd tests/fleet && PYTHONDONTWRITEBYTECODE=1 python3 -m unittest --quiet)

HOME=$(mktemp -d) # Ansible and its linter keep files in it
export HOME
trap 'rm -rf "$HOME"' EXIT
# The linter finds the roles by their full names once they are installed.
ansible-galaxy collection install fleet >/dev/null
cp -r fleet "$HOME"
cd "$HOME/fleet"
ansible-lint --offline -q --nocolor --profile production
