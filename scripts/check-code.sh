#!/usr/bin/env bash
# Checks format, include rules, documents, scripts, man pages, the Ansible collection and code.
# Usage: scripts/check-code.sh BUILD_FOLDER [--thorough]
# The folder must be configured, because clang-tidy reads its compile_commands.json. Without
# --thorough, clang-tidy reads sixteen source files at once, as the compiler does: most of its time goes
# into the headers of Qt. With it, clang-tidy reads each file alone, in a folder configured without
# unity builds, and checks tests and benchmarks too, with all checks: that takes much longer.
# A clean file is not checked again until it or a header changes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
build=${1:?build folder}
thorough=no
export extra_checks='-clang-analyzer-*,-performance-*'
stamps=$build/clang-tidy
if [ "${2:-}" = --thorough ]; then
    thorough=yes
    extra_checks=
    stamps=$build/clang-tidy-thorough
fi

# Compile commands without the precompiled headers of tests: clang cannot read those of gcc, and
# they would hide a missing include.
mkdir -p "$stamps"
sed 's/ -Winvalid-pch -include .*cmake_pch\.hxx\(\\"\)\?//' "$build/compile_commands.json" \
    >"$stamps/compile_commands.json"

sources() {
    # git refuses a checkout of another user otherwise
    git -c safe.directory='*' ls-files --cached --others --exclude-standard -- "$@"
}

mapfile -t code < <(sources '*.cpp' '*.h')
mapfile -t units < <(sources '*.cpp')
mapfile -t tidied < <(
    if [ "$thorough" = yes ]; then
        printf '%s\n' "${units[@]}"
    else
        sed -n 's/^ *"file": "\(.*\)",\?$/\1/p' "$build/compile_commands.json" |
            grep -E "/$build/(src|tools|simulator)/.*/Unity/"
    fi
)
mapfile -t headers < <(sources '*.h')
mapfile -t scripts < <(sources '*.sh' .ci/run simulator compat session image bench/boot | while read -r file; do
    if head -n 1 "$file" | grep -qE '^#!.*\b(ba)?sh\b' || [[ $file == *.sh ]]; then echo "$file"; fi
done)

# Each version breaks some lines and empty braces in its own way. The code looks as version 14 of
# Debian 12 wants it.
if [[ $(clang-format --version) == *" version 14."* ]]; then
    echo "Format"
    clang-format --dry-run --Werror "${code[@]}"
else
    echo "Format: left to Debian 12, whose clang-format the code is for"
fi

echo "Include rules"
# folder, then the folders that it may include
while read -r folder allowed; do
    forbidden=$(grep -nHoE '^#include "[a-z]+/' -r "$folder" |
        grep -vE "\"(${folder##*/}|${allowed// /|})/" || true)
    if [ -n "$forbidden" ]; then
        printf '%s may not include this:\n%s\n' "$folder" "$forbidden"
        exit 1
    fi
done <<'RULES'
src/system system
src/widgets widgets
src/packages system widgets
src/inputpanel system widgets
src/factory system
src/shell system widgets packages inputpanel
src/pages system widgets packages inputpanel shell
tools/common common
tools/mkpackage common packages system
tools/doctor common packages system
tools/guard common system
tools/install common mkpackage packages system
tools/settings common guard system
RULES

echo "Hazards"
# each test that the document names must exist
while IFS=: read -r file _ function; do
    sources "tests/*/$file.cpp" | xargs grep -qE "^void [A-Za-z]+::$function\\(\\)" /dev/null || {
        echo "docs/hazards.md names $file::$function, which does not exist"
        exit 1
    }
done < <(grep -oE 'tst_[a-z]+::[A-Za-z]+' docs/hazards.md | sort -u)

echo "Links"
scripts/check-links.sh

echo "Headers" # each must compile on its own
# The compile command of a source file, or of the unity file that includes it, without its output.
compiler_of() {
    local unity
    unity=$(grep -rlF --include='unity_*.cxx' "\"$PWD/$1\"" "$build") || unity=
    python3 -c 'import json, sys
print(next(unit["command"] for unit in json.load(open(sys.argv[1])) if unit["file"] in sys.argv[2:]))' \
        "$stamps/compile_commands.json" "$PWD/$1" ${unity:+"$PWD/$unity"} | sed 's/ -o .*//'
}
for header in "${headers[@]}"; do
    unit=${header%.h}.cpp
    name=${header##*/}
    if [ ! -f "$unit" ]; then # included twice, with the options of a file that includes it
        mapfile -t users < <(grep -lE "^#include \"(.*/)?$name\"" "${units[@]}")
        # a header that only headers include: the options of a file next to it
        [ "${#users[@]}" -gt 0 ] || users=("${header%/*}"/*.cpp)
        unit=${users[0]}
        eval "$(compiler_of "$unit") -fsyntax-only -x c++ -" <<TEXT
#include "$PWD/$header"
#include "$PWD/$header"
TEXT
    elif ! grep -m 1 '^#include' "$unit" | grep -qE "[\"/]$name\"$"; then # compiling it proves the header
        echo "$unit must include its own header first"
        exit 1
    fi
done

echo "Scripts"
shellcheck --external-sources "${scripts[@]}"

echo "Manual pages"
sources '*.[1-8]' | xargs mandoc -T lint -W warning

echo "Ansible collection" # its roles have full names once it is installed
collection=$(mktemp -d)
trap 'rm -rf "$collection"' EXIT
HOME=$collection ansible-galaxy collection install fleet >/dev/null
cp -r fleet "$collection"
(
    cd "$collection/fleet"
    export HOME=$collection
    lint_options=()
    # A newer ansible-lint than Debian 12's cannot read modules with the Ansible next to it, and
    # wants no collection to be for Debian 12's Ansible.
    [[ $(ansible-lint --nocolor --version) == "ansible-lint 6."* ]] ||
        lint_options=(--exclude plugins --skip-list 'meta-runtime[unsupported-version]')
    ansible-lint --offline -q --nocolor --profile production "${lint_options[@]}"
)

echo "Code"
# The tests are left out, so that a function used only by tests is reported as unused.
cppcheck --quiet --error-exitcode=1 --std=c++20 --library=qt -D PANEL_VERSION='"1"' -I src \
    -I tools -I tools/mkpackage -I tools/doctor -I tools/guard \
    --enable=warning,style,performance,portability,unusedFunction \
    --suppress-xml=scripts/cppcheck.xml src tools

state=$(cat .clang-tidy tests/.clang-tidy "${headers[@]}" | sha256sum | cut -d' ' -f1)
# The checksum of a file and of the source files that it includes.
hash_of() {
    local included
    mapfile -t included < <(sed -n 's/^#include "\(\/.*\)"$/\1/p' "$1")
    cat "$1" "${included[@]}" | sha256sum | cut -d' ' -f1
}
pending=()
for unit in "${tidied[@]}"; do
    [ "$(cat "$stamps/${unit//\//_}" 2>/dev/null)" = "$state $(hash_of "$unit")" ] || pending+=("$unit")
done
check_unit() {
    clang-tidy --quiet --checks="$extra_checks" --header-filter='/(src|tools|tests|simulator|bench)/.*\.(cpp|h)$' \
        -p "$stamps" "$1" 2>/dev/null || return
    echo "$state $(hash_of "$1")" >"$stamps/${1//\//_}"
}
export -f check_unit hash_of
export stamps state
if [ "${#pending[@]}" -gt 0 ]; then
    # shellcheck disable=SC2016 # the inner shell expands it
    printf '%s\0' "${pending[@]}" |
        xargs -0 -n 1 -P "$(nproc)" bash -c 'check_unit "$1"' check_unit
fi
