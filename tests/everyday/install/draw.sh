# Sourced: what all that test an installation share.

fail()
{
    echo "$0: $*" >&2
    exit 1
}

# starts_with FILE OCTAL: its first four bytes, as od writes them.
starts_with()
{
    [ "$(head -c 4 "$1" | od -An -to1)" = "$2" ] || fail "$1 is no picture"
}

# draws_a_picture FOLDER WORK: the programs in a folder need no variable, and leave nothing
# but what they were asked for.
draws_a_picture()
{
    local folder=$1 runs=$2/runs
    rm -rf "$runs"
    mkdir "$runs" "$runs/tmp"
    printf 'ShaderType surface\nVVaskel "v_metal"\nShopData\n' >"$runs/metal.palette"
    printf 'ShaderType surface\nVVaskel "v_mettal"\n' >"$runs/bad.palette"
    (
        cd "$runs"
        env -i "$folder/thumbrender" metal.palette
        starts_with metal.jpg ' 377 330 377 340'
        env -i TMPDIR="$runs/tmp" "$folder/palette-thumbnailer" 128 metal.palette metal.png
        starts_with metal.png ' 211 120 116 107'
        ! env -i TMPDIR="$runs/tmp" "$folder/palette-thumbnailer" 128 bad.palette bad.png \
            2>/dev/null || fail "a bad palette is no failure"
        [ "$(find . -type f | sort | tr '\n' ' ')" = \
            "./bad.palette ./metal.jpg ./metal.palette ./metal.png " ] || fail "wrong files are there"
    )
}
