#!/usr/bin/env bash
# prefix.sh [BUILD]: installs a build into a prefix, moves that, and draws from there with an
# empty environment; a program's help, manual page and completion go together.
set -euo pipefail
build=$(realpath "${1:-$(dirname "$0")/../../build/release}")
source=$(realpath "$(dirname "$0")/../..")
. "$source/tests/everyday/install/draw.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/first" >/dev/null
prefix="$work/then moved"
mv "$work/first" "$prefix"

draws_a_picture "$prefix/bin" "$work"
rm "$work/runs/metal.jpg"
env -i HOME="$work" "$prefix/bin/thumbmake" -q "$work/runs/metal.palette"
starts_with "$work/runs/metal.jpg" ' 377 330 377 340'
! grep -rIlF -e "$work/first" -e "$build" "$prefix" || fail "these files know where they were made"

for program in "$prefix"/bin/*; do
    name=$(basename "$program")
    manual=$prefix/share/man/man1/$name.1
    [ -s "$manual" ] || fail "$name has no manual page"
    [ "$name" != palette-thumbnailer ] || continue # which has no options
    for file in bash-completion/completions/$name zsh/site-functions/_$name \
        fish/vendor_completions.d/$name.fish; do
        [ -s "$prefix/share/$file" ] || fail "$file is missing"
    done
done

# completed PROGRAM WORD...: what bash offers for the last word.
completed()
{
    bash -c 'compopt() { :; }
        . "$1"; shift
        COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); "_$1"
        printf "%s " "${COMPREPLY[@]}"' - "$prefix/share/bash-completion/completions/$1" "$@"
}
[ "$(completed thumbrender -g '')" = "sphere grid cylinder teapot " ] || fail "completed wrongly"
[ "$(completed vaskel --qua)" = "--quality " ] || fail "completed wrongly"
[ "$(completed vaskel --quality d)" = "draft default " ] || fail "completed wrongly"
grep -qF '\fB\-\-quality\fR \fIQ\fR' "$prefix/share/man/man1/vaskel.1" || fail "no option in vaskel.1"
