#!/usr/bin/env bash
# Takes pictures of the real windows on the simulated panel and compares them with the stored ones.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
# shellcheck source=scripts/common.sh
. scripts/common.sh

usage() {
    cat <<'TEXT'
Usage: tests/pictures/take-pictures.sh [OPTION]...

Takes pictures of the pages and dialogs on screens of several sizes and compares
them with the stored ones: docs/pictures has those that the documents show,
tests/pictures/reference has those of the other screens, and those that look different
on Debian 13. Pictures with a visible difference replace the stored ones, and
docs/picture-book.md is generated again.
Build first: cmake --build --preset release

  --check        Does not change the stored pictures: lists the differences,
                 leaves the new pictures in the build folder and exits with
                 status 1 if there are any.
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

main_screen=800x600
small_screen=800x480-K07
# A screen is a size, or a size and the model of the panel. These are the usual 4:3 panel, the
# usual 7-inch panel with its small font, a wide and short screen, the narrowest screen, and one
# with room to spare. All other sizes are laid out like one of these.
screens=("$main_screen" "$small_screen" 1024x600 600x800 1280x800)
taken=$build/pictures
expected=$build/expected-pictures
release=$(os_release VERSION_CODENAME)
captions=tests/pictures/captions.txt

# own_folder SCREEN: the folder with its pictures of Debian 12. The documents show some of the screens.
own_folder() {
    case $1 in
        "$main_screen" | "$small_screen") echo "docs/pictures/$1" ;;
        *) echo "tests/pictures/reference/$1" ;;
    esac
}

# other_folder SCREEN: the folder with the pictures that look different on this release. Spin boxes of
# Qt 6.8 are 7 pixels wider than those of 6.4, and its warnings have another icon. A comparison that
# took the two for the same would miss a button that moves.
other_folder() {
    [ "$release" = bookworm ] || echo "tests/pictures/reference/$release/$1"
}

# gather SCREEN: puts together what its pictures should be on this release
gather() {
    local folder
    mkdir -p "$expected/$1"
    for folder in "$(own_folder "$1")" $(other_folder "$1"); do
        [ ! -d "$folder" ] || cp "$folder"/*.png "$expected/$1"
    done
}

# take SCREEN: takes the pictures on this screen and keeps the ones that differ.
take() {
    local status=0 options=()
    [ "$1" = "$main_screen" ] || options+=(--layouts)
    [ "${1#*-}" = "$1" ] || options+=(--model "${1#*-}")
    gather "$1"
    mkdir -p "$taken/$1"
    simulator/panel --build "$build" --display xvfb --size "${1%-*}" --share "$taken" -- \
        "$build/bin/takepictures" "${options[@]}" "$expected/$1" "$taken/$1" || status=$?
    [ "$status" -le 1 ] || echo "the pictures of $1 could not be taken"
    return "$status"
}

# Three screens at a time: a window spends most of the time waiting for tools.
take_all() {
    rm -rf "$taken" "$expected"
    export -f take gather own_folder other_folder
    export taken expected release build main_screen small_screen
    # shellcheck disable=SC2016 # the inner shell expands it
    printf '%s\n' "${screens[@]}" | xargs -P 3 -I '{}' bash -c 'take "$1"' take '{}' >"$build/pictures.log"
}

# A palette of 256 colours takes a third of the space and looks the same.
compress() {
    find "$taken" -name '*.png' -print0 |
        xargs -0 -r -n 16 -P 2 pngquant --force --ext .png --nofs --strip --speed 3 256
}

store() {
    local screen folder
    for screen in "${screens[@]}"; do
        folder=$(other_folder "$screen")
        folder=${folder:-$(own_folder "$screen")}
        mkdir -p "$folder"
        find "$taken/$screen" -name '*.png' -exec cp -t "$folder" '{}' +
    done
}

# remove_old SCREEN <NAMES: removes its pictures with these names, of all releases
remove_old() {
    local name
    while read -r name; do
        rm -f "$(own_folder "$1")/$name" tests/pictures/reference/*/"$1/$name"
    done
}

# write_pictures SCREEN: its pictures below their captions. Headings stay only on the main screen:
# the others have fewer pictures.
write_pictures() {
    local name caption
    while IFS=: read -r name caption; do
        caption=${caption# }
        case $name in
            "") ;;
            "##"*) [ "$1" != "$main_screen" ] || printf '\n%s\n' "$name" ;;
            *)
                [ ! -e "docs/pictures/$1/$name.png" ] ||
                    printf '\n%s.\n\n![%s](pictures/%s/%s.png)\n' "$caption" "$caption" "$1" "$name"
                ;;
        esac
    done <"$captions"
}

write_book() {
    cat <<'TEXT'
# Picture book

Every page and dialog of the program on an 800x600 panel, then the pages on a 7-inch panel.
[take-pictures.sh](../tests/pictures/take-pictures.sh) takes the pictures and generates this page;
the captions are in [captions.txt](../tests/pictures/captions.txt).
TEXT
    write_pictures "$main_screen"
    printf '\n## 7-inch panel\n\nModel K07 with its screen of 800x480 pixels and its smaller font.\n'
    write_pictures "$small_screen"
}

[ -x "$build/bin/takepictures" ] || die "no $build/bin/takepictures: build it first, see --help"
status=0
take_all || status=1
cat "$build/pictures.log"
! grep -q 'could not be taken' "$build/pictures.log" || exit 1
if [ "$check" = yes ]; then
    [ "$status" -eq 0 ] ||
        echo "If the new pictures are right, store them: tests/pictures/take-pictures.sh --build $build"
    exit "$status"
fi

install_packages "${picture_packages[@]}"
compress
for screen in "${screens[@]}"; do
    sed -n "s!^not taken any more: $expected/$screen/!!p" "$build/pictures.log" | remove_old "$screen"
done
store
write_book >docs/picture-book.md
find docs/pictures tests/pictures/reference -name '*.png' -print0 | du -cb --files0-from=- |
    awk 'END { printf "%.1f MB of pictures\n", $1 / 1e6 }'
