#!/usr/bin/env bash
# Looks whether each file that a document links to exists, and whether each picture is in one.
# Usage: scripts/check-links.sh [FOLDER] (of the checkout, this one if not given)
set -euo pipefail
cd "${1:-$(dirname "${BASH_SOURCE[0]}")/..}"

# The targets of links in the documents, from the top of the checkout; pages elsewhere are left out.
linked() {
    local document target
    for document in README.md docs/*.md; do
        { grep -oP '\]\(\K[^)#]+(?=[)#])' "$document" || true; } | # some link to nothing
            while read -r target; do
                [[ $target == *://* ]] ||
                    realpath -m --relative-to=. "$(dirname "$document")/$target"
            done
    done | sort -u
}

broken=no
report() { # TEXT FILE...
    local file
    for file in "${@:2}"; do
        echo "$1: $file"
        broken=yes
    done
}

mapfile -t targets < <(linked)
for target in "${targets[@]}"; do
    [ -e "$target" ] || report "linked and not there" "$target"
done
mapfile -t unused < <(comm -13 <(printf '%s\n' "${targets[@]}") <(find docs -name '*.png' | sort))
report "in no document" "${unused[@]}"
[ "$broken" = no ]
