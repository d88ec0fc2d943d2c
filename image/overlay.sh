# Adds the maker's own files to the panel. Sourced by build.
# shellcheck shell=bash disable=SC2154 # build sets root and log

# The files of all packages, with the folders of /usr spelt out, but not the configuration files,
# which a maker may change.
package_files() {
    {
        cat "$root"/var/lib/dpkg/info/*.list
        sed -n 's/^ \(\/[^ ]*\) .*/-\1/p' <(dpkg-query --admindir="$root/var/lib/dpkg" --show --showformat='${Conffiles}\n')
    } | sed -E 's!^(-?)/(bin|sbin|lib|lib32|lib64|libx32)/!\1/usr/\2/!' |
        awk '/^-/ { own[substr($0, 2)] = 1; next } { all[$0] = 1 }
            END { for (file in all) if (!(file in own)) print file }'
}

# Every file of the overlay, as the panel will call it.
overlay_files() { # FOLDER
    (cd "$1" && find . -mindepth 1 ! -type d) | sed -E 's!^\./!/!; s!^/(bin|sbin|lib|lib32|lib64|libx32)/!/usr/\1/!'
}

add_overlay() { # FOLDER
    local taken
    taken=$(comm -12 <(overlay_files "$1" | sort -u) <(package_files | sort -u) | head -n 1)
    [ -z "$taken" ] || die "the overlay replaces a file of a package: $taken"
    { tar -C "$1" --create --owner=0 --group=0 --numeric-owner . |
        tar -C "$root" --extract --keep-directory-symlink --no-overwrite-dir; } 2>>"$log" ||
        die "the overlay could not be copied: $(tail -n 1 "$log")"
}
