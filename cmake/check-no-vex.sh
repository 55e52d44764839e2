#!/usr/bin/env bash
# Fails when any code in the built library outside the Avx variants (the zor::avx namespace) is
# VEX- or EVEX-encoded, that is, would not run on an SSE-only processor. The whole linked binary
# is checked, so an out-of-line copy of a shared inline function compiled for AVX is caught too.
# usage: check-no-vex.sh <objdump> <library>
set -euo pipefail
objdump=$1
lib=$2
"$objdump" -d -C --insn-width=16 "$lib" | awk -v lib="$lib" '
    /^[0-9a-f]+ <.*>:$/ {
        fn = substr($0, index($0, "<") + 1)
        fn = substr(fn, 1, length(fn) - 2)
        allowed = (index(fn, "zor::avx::") > 0)
        next
    }
    !allowed && /^ +[0-9a-f]+:\t/ {
        split($0, parts, "\t")
        n = split(parts[2], bytes, " ")
        i = 1
        # segment and address-size prefixes may precede a VEX prefix
        while (i <= n && bytes[i] ~ /^(26|2e|36|3e|64|65|67)$/) i++
        if (i <= n && bytes[i] ~ /^(c4|c5|62)$/) {
            printf "%s: VEX/EVEX instruction outside the Avx variants in %s:\n  %s\n", lib, fn, $0
            bad++
            if (bad >= 20) exit 1
        }
    }
    END { if (bad) exit 1 }
'
echo "check-no-vex: $lib has no VEX-encoded instruction outside zor::avx"
