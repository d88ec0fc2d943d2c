# Makes a disk of a root file system, without root's help: no loop device, no mount. Sourced by build.
# shellcheck shell=bash disable=SC2154 # build sets architecture, root, work and size

# The same on every panel, so that two builds give the same bytes. Nothing refers to them:
# the system finds its partitions by their names.
readonly disk_id=7A1E0000-0000-4000-8000-000000000000
readonly root_id=7A1E0000-0000-4000-8000-000000000003
readonly home_id=7A1E0000-0000-4000-8000-000000000004
readonly hash_seed=7A1E0000-0000-4000-8000-000000000005

readonly sector=512
readonly mib=$((1024 * 1024))

# megabytes_of FOLDER: what its files need on ext4, in MiB
megabytes_of() {
    find "$1" -xdev -printf '%i %s %y\n' | sort -u | # a file with two names takes its room once
        awk '{ blocks += $3 == "d" ? 1 : int(($2 + 4095) / 4096) } END { print int(blocks / 256) + 1 }'
}

# make_filesystem IMAGE LABEL UUID FOLDER MEBIBYTES
make_filesystem() {
    rm -f "$1"
    E2FSPROGS_FAKE_TIME=$SOURCE_DATE_EPOCH mke2fs -q -t ext4 -L "$2" -U "$3" -m 1 \
        -E "hash_seed=$hash_seed,root_owner=0:0,lazy_itable_init=0,lazy_journal_init=0" \
        -d "$4" "$1" "$5M" >>"$log" 2>&1 || die "the file system $2 could not be made, see $log"
    settle_times "$1"
}

# mke2fs copies the times of the last access and change, which nobody can set beforehand. The
# inodes of a new file system are used without gaps.
settle_times() { # IMAGE
    local used
    used=$(dumpe2fs -h "$1" 2>/dev/null | awk '/^Inode count/ { all = $3 } /^Free inodes/ { print all - $3 }')
    awk -v used="$used" -v time="@$SOURCE_DATE_EPOCH" 'BEGIN {
        for (inode = 2; inode <= used; inode++) {
            printf "sif <%d> ctime %s\nsif <%d> atime %s\n", inode, time, inode, time
        }
    }' | E2FSPROGS_FAKE_TIME=$SOURCE_DATE_EPOCH debugfs -w -f - "$1" >/dev/null 2>>"$log"
}

# Both boot loaders load their configuration from the root file system.
boot_loader_config() {
    cat <<'CONFIG'
search --no-floppy --label --set=root talmero-root
set prefix=($root)/boot/grub
configfile /boot/grub/grub.cfg
CONFIG
}

readonly grub_modules=(normal configfile search search_label part_gpt ext2 linux test echo sleep reboot)

# make_loader FORMAT FILE [MODULE...]
make_loader() {
    local folder=/usr/lib/grub/$1
    [ -d "$folder" ] || folder=$work/loaders$folder
    grub-mkimage --directory="$folder" --format="$1" --prefix=/boot/grub --config="$work/early.cfg" \
        --output="$2" "${grub_modules[@]}" "${@:3}" >>"$log" 2>&1 || die "grub-mkimage failed, see $log"
}

# add_uefi_loader FORMAT NAME: the firmware looks for the name
add_uefi_loader() {
    make_loader "$1" "$work/$2"
    touch --date "@$SOURCE_DATE_EPOCH" "$work/$2"
    mcopy -m -i "$work/esp.img" "$work/$2" "::/EFI/BOOT/$2"
}

# make_boot_files: esp.img for UEFI and, for a PC, core.img for BIOS
make_boot_files() {
    boot_loader_config >"$work/early.cfg"
    truncate --size 8M "$work/esp.img"
    mformat -i "$work/esp.img" -v TALMERO -N 7a1e0002 -T 16384 -h 16 -s 32 ::
    mmd -i "$work/esp.img" ::/EFI ::/EFI/BOOT
    if [ "$architecture" = arm64 ]; then
        add_uefi_loader arm64-efi BOOTAA64.EFI
    else
        make_loader i386-pc "$work/core.img" biosdisk
        add_uefi_loader x86_64-efi BOOTX64.EFI
        add_uefi_loader i386-efi BOOTIA32.EFI # some PCs of 64 bits have firmware of 32 bits
    fi
}

# put IMAGE FILE OFFSET: writes FILE into IMAGE
put() {
    dd if="$2" of="$1" bs="$sector" seek=$(($3 / sector)) conv=notrunc,sparse status=none
}

# put_number IMAGE OFFSET NUMBER: writes NUMBER in 8 bytes, lowest byte first
put_number() {
    local bytes='' byte number=$3
    for _ in 1 2 3 4 5 6 7 8; do
        printf -v byte '\\x%02x' $((number & 255))
        bytes+=$byte
        number=$((number >> 8))
    done
    # shellcheck disable=SC2059 # the format is the bytes
    printf "$bytes" | dd of="$1" bs=1 seek="$2" conv=notrunc status=none
}

# The boot sector loads the first sector of core.img, and that one loads the rest. Both
# hold the place where they find it.
install_bios_loader() { # IMAGE START_OF_BOOT_PARTITION
    put_number "$work/core.img" 500 $(($2 / sector + 1))
    put "$1" "$work/core.img" "$2"
    dd if=/usr/lib/grub/i386-pc/boot.img of="$1" bs=1 count=440 conv=notrunc status=none
    put_number "$1" 92 $(($2 / sector))
    printf '\x90\x90' | dd of="$1" bs=1 seek=102 conv=notrunc status=none # the jump over the check of the disk's number
}

# make_disk IMAGE
make_disk() {
    local image=$1 total=$((size * 1000000 / mib)) system home_size root_size
    mkdir "$work/home"
    cp -a "$root/home/." "$work/home"
    find "$root/home" -mindepth 1 -delete
    touch --date "@$SOURCE_DATE_EPOCH" "$root/home" "$work/home"
    system=$(megabytes_of "$root")
    root_size=$((system * 105 / 100 + 80)) # free space for fonts, logs and updates
    home_size=$((total - root_size - 12))
    [ "$home_size" -ge $(($(megabytes_of "$work/home") * 115 / 100 + 64)) ] ||
        die "$size MB are too few: the system takes $system MiB, and /home needs room; see --size"
    make_boot_files
    make_filesystem "$work/root.img" talmero-root "$root_id" "$root" "$root_size"
    make_filesystem "$work/home.img" talmero-home "$home_id" "$work/home" "$home_size"
    rm -f "$image"
    truncate --size $((size * 1000000 / sector * sector)) "$image"
    sfdisk --quiet "$image" <<PARTITIONS >>"$log" 2>&1 || die "the partitions could not be made, see $log"
label: gpt
label-id: $disk_id
start=1MiB, size=1MiB, type=21686148-6449-6E6F-744E-656564454649, name=talmero-bios-boot, uuid=7A1E0000-0000-4000-8000-000000000001
start=2MiB, size=8MiB, type=uefi, name=talmero-uefi, uuid=7A1E0000-0000-4000-8000-000000000002
start=10MiB, size=${root_size}MiB, type=linux, name=talmero-root, uuid=$root_id
start=$((10 + root_size))MiB, size=${home_size}MiB, type=linux, name=talmero-home, uuid=$home_id
PARTITIONS
    [ ! -e "$work/core.img" ] || install_bios_loader "$image" "$mib"
    put "$image" "$work/esp.img" $((2 * mib))
    put "$image" "$work/root.img" $((10 * mib))
    put "$image" "$work/home.img" $(((10 + root_size) * mib))
}
