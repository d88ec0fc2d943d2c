#!/usr/bin/env bash
# Checks that every file that a document links to exists, and that a document shows every picture.
# Usage: scripts/check-links.sh [CHECKOUT] (default: this one)
set -euo pipefail
cd "${1:-$(dirname "${BASH_SOURCE[0]}")/..}"

# The targets of all links, relative to the checkout. Web addresses are skipped.
linked() {
    local document target
    for document in README.md docs/*.md; do
        { grep -oP '\]\(\K[^)#]+(?=[)#])' "$document" || true; } | # a document may have no links
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
    [ -e "$target" ] || report "broken link" "$target"
done
mapfile -t unused < <(comm -13 <(printf '%s\n' "${targets[@]}") <(find docs -name '*.png' | sort))
report "picture that no document shows" "${unused[@]}"
[ "$broken" = no ]
