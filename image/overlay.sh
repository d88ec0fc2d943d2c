# Adds the maker's own files to the panel. Sourced by build.
# shellcheck shell=bash disable=SC2154 # build sets root and log

# The names of files as the panel calls them: the folders of /usr are spelt out.
in_usr() {
    sed -E 's!^/(bin|sbin|lib|lib32|lib64|libx32)/!/usr/\1/!'
}

# without_configuration FILES CONFFILES: a maker may change a package's configuration files.
without_configuration() {
    comm -23 <(in_usr <"$1" | sort -u) <(in_usr <"$2" | sort -u)
}

# The files of all packages that are installed.
installed_files() {
    without_configuration <(cat "$root"/var/lib/dpkg/info/*.list) \
        <(dpkg-query --admindir="$root/var/lib/dpkg" --show --showformat='${Conffiles}\n' |
            sed -n 's/^ \(\/[^ ]*\) .*/\1/p')
}

# archive_files PACKAGE...: the files of packages that are not installed yet
archive_files() {
    local package
    for package; do
        without_configuration \
            <(dpkg-deb --fsys-tarfile "$package" | tar --list | sed -E 's!^\.!!; s!/$!!') \
            <(dpkg-deb --info "$package" conffiles 2>/dev/null)
    done
}

# Every file of the overlay, as the panel will call it.
overlay_files() { # FOLDER
    (cd "$1" && find . -mindepth 1 ! -type d) | sed 's!^\.!!' | in_usr
}

# refuse_taken FOLDER: ends if the overlay has one of the files that standard input lists
refuse_taken() {
    local taken
    taken=$(comm -12 <(overlay_files "$1" | sort -u) <(sort -u) | head -n 1)
    [ -z "$taken" ] || die "the overlay replaces a file of a package: $taken"
}

add_overlay() { # FOLDER
    refuse_taken "$1" < <(installed_files)
    { tar -C "$1" --create --owner=0 --group=0 --numeric-owner . |
        tar -C "$root" --extract --keep-directory-symlink --no-overwrite-dir; } 2>>"$log" ||
        die "the overlay could not be copied: $(tail -n 1 "$log")"
}
