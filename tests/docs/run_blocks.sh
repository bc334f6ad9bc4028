#!/usr/bin/env bash
# Runs every code block of the docs, so that they cannot drift from what the
# tool, the library and the Python package do. The fence's first word says
# what a block is (docs/README.md lists the convention):
#   sh        shell commands, run with bash -e
#   python    a Python program
#   c, cpp    a C or C++ host, compiled against the library and run
#   xml       a configuration: `pelmora check` must accept it
#   output    what the block before it prints: each line of it, but for
#             "..." lines, must be a line of that block's output
#   syntax    a synopsis or a fragment: read, never run
# Further words: `file=NAME` writes the block to NAME first (later blocks of
# the same page use it); `fails` expects a nonzero exit; `no-run` (sh only)
# marks commands that install packages or build and test the whole tree.
# Each page runs in its own scratch folder that looks like a built source
# tree: examples/, python/, include/ and build/ are links to the real ones,
# build/tools is on PATH, python/ on PYTHONPATH, and PELMORA_LIBRARY names
# the built library.
# An indented code block or an unknown fence word fails the test, so no
# command escapes by its form.
# Links between the pages (and from the README) must lead to a file and,
# with #anchor, to one of its headings.
# Usage: run_blocks.sh SOURCE_DIR BUILD_DIR (every page of SOURCE_DIR/docs)
set -euo pipefail

source_dir="$1" build_dir="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

declare -A ran=()
compared=0 skipped=0 unrun=0 links=0
fail() { echo "FAIL: $*" >&2; exit 1; }

export PATH="$build_dir/tools:$PATH" PELMORA_LIBRARY="$build_dir/libPelmora64.so"
export LD_LIBRARY_PATH="$build_dir" PYTHONDONTWRITEBYTECODE=1
unset PKG_CONFIG_PATH

# run_block WHERE KIND FILE: runs one block in the page's folder; its output
# is kept for an `output` block after it.
run_block() {
    local where="$1" kind="$2" file="$3"
    case "$kind" in
        sh) bash -euo pipefail "$file" ;;
        python) python3 "$file" ;;
        c) cc -std=c99 -Wall -Werror -Iinclude "$file" -Lbuild -lPelmora64 -o "$file.bin" && "./$file.bin" ;;
        cpp) c++ -std=c++17 -Wall -Werror -Iinclude "$file" -Lbuild -lPelmora64 -o "$file.bin" && "./$file.bin" ;;
        xml) pelmora check "$file" ;;
        *) fail "$where: unknown fence word '$kind' (see tests/docs/run_blocks.sh)" ;;
    esac
}

# expect_output WHERE TEXT: every shown line is a line of the last output.
expect_output() {
    local where="$1" line
    [ -f last.out ] || fail "$where: an output block follows no block that ran"
    while IFS= read -r line; do
        [ "$line" = "..." ] || grep -qxF -- "$line" last.out ||
            { cat last.out >&2; fail "$where: the output shown has '$line', the block printed the above"; }
    done <<<"$2"
    compared=$((compared + 1))
}

# check_links PAGE: every link to a page of the docs (or the tree) names a
# file that exists and, with #anchor, a heading of that page.
check_links() {
    local page="$1" link target anchor
    while IFS= read -r link; do
        target="${link%%#*}" anchor=""
        [[ "$link" == *"#"* ]] && anchor="${link#*#}"
        target="$(dirname "$page")/${target:-$(basename "$page")}"
        [ -e "$target" ] || fail "$(basename "$page"): the link $link names no file"
        [ -z "$anchor" ] || grep '^#' "$target" | sed -E 's/^#+ +//; s/[A-Z]/\L&/g; s/[^a-z0-9 _-]//g; s/ /-/g' |
            grep -qxF -- "$anchor" || fail "$(basename "$page"): the link $link names no heading"
        links=$((links + 1))
    done < <(grep -oE '\]\([^) ]+\)' "$page" | sed -E 's/^\]\((.*)\)$/\1/' | grep -v '^[a-z]*:')
}

# block PAGE LINE INFO TEXT
block() {
    local where="$1:$2" kind="${3%% *}" words=" $3 " name expect=0
    case "$kind" in
        syntax) unrun=$((unrun + 1)); rm -f last.out; return ;;
        output) expect_output "$where" "$4"; return ;;
    esac
    if [[ "$words" == *" no-run "* ]]; then
        [ "$kind" = sh ] || fail "$where: only sh blocks may be no-run"
        skipped=$((skipped + 1)); rm -f last.out; return
    fi
    [[ "$words" == *" fails "* ]] && expect=1
    name="$(sed -n 's/.* file=\([^ ]*\) .*/\1/p' <<<"$words")"
    name="${name:-block-$2.$kind}"
    printf '%s\n' "$4" >"$name"
    local status=0
    run_block "$where" "$kind" "$name" >last.out 2>&1 || status=$?
    if [ $((status != 0)) -ne "$expect" ]; then
        cat last.out >&2
        fail "$where: the $kind block exited with $status"
    fi
    ran[$kind]=$((${ran[$kind]:-0} + 1))
}

for page in "$source_dir"/docs/*.md; do
    name="$(basename "$page" .md)"
    folder="$work/$name"
    mkdir "$folder"
    for part in examples python include; do ln -s "$source_dir/$part" "$folder/$part"; done
    ln -s "$build_dir" "$folder/build"
    cd "$folder"
    export PYTHONPATH="$folder/python"
    number=0 fence="" start=0 text="" blank=1
    while IFS= read -r line || [ -n "$line" ]; do
        number=$((number + 1))
        if [ -n "$fence" ]; then
            if [ "$line" = '```' ]; then
                block "$name.md" "$start" "$fence" "${text%$'\n'}"
                fence=""
            else
                text+="$line"$'\n'
            fi
            continue
        fi
        if [[ "$line" == '```'* ]]; then
            fence="${line#\`\`\`}" start=$number text=""
            [ -n "$fence" ] || fail "$name.md:$number: a fence without a word (see tests/docs/run_blocks.sh)"
        elif [ $blank -eq 1 ] && [[ "$line" == "    "* ]]; then
            fail "$name.md:$number: an indented code block; fence it with a word saying what it is"
        fi
        [[ "$line" =~ ^[[:space:]]*$ ]] && blank=1 || blank=0
    done <"$page"
    [ -z "$fence" ] || fail "$name.md:$start: a fence that is never closed"
    check_links "$page"
done
check_links "$source_dir/README.md"

total=0 summary=""
for kind in sh python c cpp xml; do
    total=$((total + ${ran[$kind]:-0})) summary+=", $kind ${ran[$kind]:-0}"
done
echo "docs: ran $total code blocks (${summary#, }) and compared $compared outputs;" \
    "$unrun syntax blocks read, $skipped no-run commands left to the reader; $links links lead somewhere"
