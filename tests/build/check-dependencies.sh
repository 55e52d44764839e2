#!/usr/bin/env bash
# The built library may depend on the C runtime and the system's kernel library only: on Windows
# KERNEL32.dll and msvcrt.dll; on Linux libc, libm and the dynamic loader (no libstdc++, no
# libgcc_s).
# usage: check-dependencies.sh linux|windows <objdump> <library>
set -euo pipefail
platform=$1 objdump=$2 lib=$3
if [ "$platform" = linux ]; then
    deps=$("$objdump" -p "$lib" | awk '$1 == "NEEDED" { print $2 }')
    allowed='^(libc\.so\.6|libm\.so\.6|ld-linux-x86-64\.so\.2)$'
else
    deps=$("$objdump" -p "$lib" | awk '/DLL Name:/ { print $3 }')
    allowed='^(KERNEL32\.dll|msvcrt\.dll)$'
fi
echo "$lib depends on:"; echo "$deps" | sed 's/^/  /'
bad=$(echo "$deps" | grep -v -i -E "$allowed" || true)
if [ -n "$bad" ]; then
    echo "not allowed:"; echo "$bad" | sed 's/^/  /'
    exit 1
fi
