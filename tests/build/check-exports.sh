#!/usr/bin/env bash
# Compares a built library's export table with the export list, both ways. On Linux every
# "fortran" name must also be exported with a trailing underscore, at the same address.
# usage: check-exports.sh linux|windows <objdump> <library> <exports.list>
set -euo pipefail
platform=$1 objdump=$2 lib=$3 list=$4
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

awk '!/^[ \t]*(#|$)/ { print $2; if ($1 == "fortran" && platform == "linux") print $2 "_" }' \
    platform="$platform" "$list" | LC_ALL=C sort > "$tmp/expected"

if [ "$platform" = linux ]; then
    # Defined dynamic symbols: "<address> <flags> <section> <size> [<version>] <name>".
    "$objdump" -T "$lib" | awk '/^[0-9a-f]+ / && $0 !~ /\*UND\*/ { print $1, $NF }' > "$tmp/symbols"
    awk '{ print $2 }' "$tmp/symbols" | LC_ALL=C sort -u > "$tmp/actual"
else
    "$objdump" -p "$lib" | awk '
        /^\[Ordinal\/Name Pointer\] Table/ { table = 1; next }
        table && /^\t\[ *[0-9]+\] / { print $NF; next }
        table { table = 0 }' | LC_ALL=C sort -u > "$tmp/actual"
fi

status=0
missing=$(LC_ALL=C comm -23 "$tmp/expected" "$tmp/actual")
extra=$(LC_ALL=C comm -13 "$tmp/expected" "$tmp/actual")
if [ -n "$missing" ]; then
    echo "listed but not exported by $lib:"; echo "$missing" | sed 's/^/  /'; status=1
fi
if [ -n "$extra" ]; then
    echo "exported by $lib but not listed:"; echo "$extra" | sed 's/^/  /'; status=1
fi

if [ "$platform" = linux ]; then
    while read -r name; do
        a=$(awk -v n="$name" '$2 == n { print $1 }' "$tmp/symbols")
        b=$(awk -v n="${name}_" '$2 == n { print $1 }' "$tmp/symbols")
        if [ -n "$a" ] && [ "$a" != "$b" ]; then
            echo "${name}_ is not at the address of $name ($b, not $a)"; status=1
        fi
    done < <(awk '$1 == "fortran" { print $2 }' "$list")
fi

[ $status -eq 0 ] && echo "exports of $lib match $list ($(wc -l < "$tmp/expected") names)"
exit $status
