#!/usr/bin/env bash
# Takes the pictures of the picture book from the real windows on the simulated panel.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: docs/take-pictures.sh [OPTION]...

Takes pictures of every page and dialog, on screens of six sizes, and compares
them with those in docs/pictures. Pictures with a visible difference replace the
stored ones, and docs/picture-book.md is generated again.
Build first: cmake --build --preset release

  --check        Changes nothing in docs: lists the differences, leaves the new
                 pictures in the build folder and exits with status 1 if there
                 are any.
  --build DIR    Folder with the built programs (default: build).
  --help         Shows this text.
TEXT
}

check=no
build=build
while [ $# -gt 0 ]; do
    case $1 in
        --check) check=yes ;;
        --build) build=${2:?folder} && shift ;;
        --help) usage && exit 0 ;;
        *) usage >&2 && exit 2 ;;
    esac
    shift
done

# The documents show the first size.
sizes=(800x600 600x800 1024x768 768x1024 1280x800 800x1280)
stored=docs/pictures
taken=$build/pictures
captions=$stored/captions.txt

# take SIZE: takes the pictures on a screen of this size and keeps the ones that differ.
take() {
    local status=0
    mkdir -p "$taken/$1"
    simulator/panel --build "$build" --display xvfb --size "$1" --share "$taken" -- \
        "$build/bin/takepictures" "$stored/$1" "$taken/$1" || status=$?
    [ "$status" -le 1 ] || echo "the pictures of $1 could not be taken"
    return "$status"
}

# Three screens at a time: a window spends most of the time waiting for tools.
take_all() {
    rm -rf "$taken"
    export -f take
    export taken stored build
    # shellcheck disable=SC2016 # the inner shell expands it
    printf '%s\n' "${sizes[@]}" | xargs -P 3 -I '{}' bash -c 'take "$1"' take '{}' >"$build/pictures.log"
}

# A palette of 256 colours takes a third of the space and looks the same.
compress() {
    find "$taken" -name '*.png' -print0 |
        xargs -0 -r -n 16 -P 2 pngquant --force --ext .png --nofs --strip --speed 3 256
}

write_book() {
    local name caption size
    cat <<'TEXT'
# Picture book

Every page and dialog of the program on an 800x600 panel. The links below each picture show
it on other screens. `docs/take-pictures.sh` takes the pictures and generates this page; the
captions are in [captions.txt](pictures/captions.txt).
TEXT
    while IFS=: read -r name caption; do
        case $name in
            "") ;;
            "##"*) printf '\n%s\n' "$name" ;;
            *)
                printf '\n%s.\n\n![%s](pictures/%s/%s.png)\n\n' "${caption# }" "${caption# }" \
                    "${sizes[0]}" "$name"
                for size in "${sizes[@]:1}"; do
                    printf '[%s](pictures/%s/%s.png)\n' "$size" "$size" "$name"
                done
                ;;
        esac
    done <"$captions"
}

[ -x "$build/bin/takepictures" ] || die "no $build/bin/takepictures: build it first, see --help"
status=0
take_all || status=1
cat "$build/pictures.log"
! grep -q 'could not be taken' "$build/pictures.log" || exit 1
if [ "$check" = yes ]; then
    [ "$status" -eq 0 ] ||
        echo "If the new pictures are right, store them: docs/take-pictures.sh --build $build"
    exit "$status"
fi

install_packages "${picture_packages[@]}"
compress
sed -n 's/^not taken any more: //p' "$build/pictures.log" | xargs -r rm --
cp -r "$taken/." "$stored"
write_book >docs/picture-book.md
du -cb "$stored"/*/*.png | awk 'END { printf "%.1f MB of pictures\n", $1 / 1e6 }'
