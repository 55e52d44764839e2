#!/usr/bin/env bash
# Runs a Windows program under Wine, headless, in the build tree's own Wine prefix.
# ZOR_WINEPREFIX overrides the prefix; the first start creates it (about ten seconds).
set -euo pipefail
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine=$(command -v wine64 || command -v wine)
# usage: run-wine.sh <program.exe> [arguments...]
#        run-wine.sh --create-prefix <build directory>
if [ "$1" = --create-prefix ]; then
    prefix=${ZOR_WINEPREFIX:-$2/wineprefix}
else
    prefix=${ZOR_WINEPREFIX:-$(cd "$(dirname "$1")/.." && pwd)/wineprefix}
fi
mkdir -p "$prefix"
export WINEPREFIX=$prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64
unset DISPLAY
if [ "$1" = --create-prefix ]; then
    "$wine" wineboot --init
    exec "${wine%/*}/wineserver" -w
fi
exe=$1
shift
exec "$wine" "$exe" "$@"
