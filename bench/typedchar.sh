#!/bin/sh
# Prints the instructions that one typed character costs, here and in KSyntaxHighlighting, by
# callgrind. Usage: bench/typedchar.sh BUILD_DIR [LINES...]
set -eu

program=$1/bench/typedchar
shift
[ $# -gt 0 ] || set -- 10000 100000 1000000
typed=20
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT

# instructions WHO LINES WHERE
instructions() {
    valgrind --tool=callgrind --collect-atstart=no --toggle-collect=typeCharacters \
        --callgrind-out-file="$place/out" "$program" "$1" "$2" "$3" >/dev/null 2>&1
    total=$(sed -n 's/^summary: //p; s/^totals: //p' "$place/out" | tail -n 1)
    echo $((total / typed))
}

printf '%9s %8s %12s %12s %7s\n' lines where vela peer ratio
for lines in "$@"; do
    for where in middle widest; do
        vela=$(instructions vela "$lines" "$where")
        peer=$(instructions peer "$lines" "$where")
        printf '%9d %8s %12d %12d %7s\n' "$lines" "$where" "$vela" "$peer" \
            "$(awk "BEGIN { printf \"%.2f\", $vela / $peer }")"
    done
done
