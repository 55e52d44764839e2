#!/usr/bin/env bash
# Runs one of reference BLAS's test programs (Debian's libblas-test: xblat1d .. xblat3z for the
# Fortran-style routines, xdcblat1 .. xzcblat3 for CBLAS) twice: on the reference BLAS alone (the
# baseline) and with zor's drop-in library loaded ahead of it. Fails when the run with zor passes
# less than the baseline, reports a failure the baseline does not, or does not call zor at all.
#
#   run-blas-test.sh PROGRAM INPUT|- LIBZOR WORKDIR
#
# The error exits are a case of their own: the program's XERBLA (cblas_xerbla for CBLAS) cannot
# see the reports of zor's own xerbla, so every argument error that zor detects is reported by the
# program as "NOT DETECTED", and the routine as failing its error-exit tests. Those are accepted
# when zor printed the matching report ("Parameter N was incorrect on entry to NAME"), in the same
# order, and are failures otherwise (an argument error zor missed, numbered differently, or raised
# on a valid call).
set -euo pipefail
program=$1 input=$2 zor=$3 work=$4
blas=/usr/lib/x86_64-linux-gnu/blas
case $program in
    */*) ;;
    *) program=$blas/$program ;;
esac
[ "$input" = - ] && input=/dev/null
case $input in
    */*) ;;
    *) input=$blas/$input ;;
esac
name=$(basename "$program")
rm -rf "${work:?}/$name"
mkdir -p "$work/$name/baseline" "$work/$name/zor"

# The programs write their report to standard output or to the summary file that the input names,
# in the folder they run in; the report is both. With zor, the loader logs its symbol bindings.
run() {
    local dir=$1
    shift
    (cd "$dir" && env LD_LIBRARY_PATH="$blas" "$@" "$program" < "$input" > stdout.txt 2>&1) ||
        { echo "$program failed in $dir:"; tail -20 "$dir/stdout.txt"; exit 1; }
    cat "$dir/stdout.txt" "$dir"/*.out > "$dir/report.txt" 2> /dev/null || true
}
run "$work/$name/baseline" &
baseline_run=$!
run "$work/$name/zor" LD_PRELOAD="$zor" LD_DEBUG=bindings LD_DEBUG_OUTPUT="$work/$name/zor/bindings"
wait $baseline_run
baseline=$work/$name/baseline/report.txt
withzor=$work/$name/zor/report.txt

# Every pass but those of the error-exit tests; level 1's bare "PASS" lines named by the routine
# tested before them.
passes() {
    awk '/Test of subprogram number/ { name = $NF }
         /PASS/ && !/ERROR-EXITS/ { sub(/^ +/, ""); print (/^-/ ? name " " : "") $0 }' "$1" | sort
}
# Lines that report a failure, but those of the error exits.
failures() {
    grep -E 'FAIL|FATAL|ERROR|SUSPECT|WRONG|INSTEAD OF' "$1" |
        grep -vE 'PASSED|ZOR ERROR: Parameter|NOT DETECTED BY|FAILED THE TESTS OF ERROR-EXITS' |
        sed 's/^ *//' | sort -u || true
}
# The argument errors zor reported, and those the program found not detected, as "N NAME". Some
# CBLAS functions report a bad letter enumeration and go on to their Fortran-style routine, which
# reports it again under its own name (cblas_dgemv, then DGEMV): that second report is no error
# exit of its own.
reported() {
    sed -nE 's/.*ZOR ERROR: Parameter ([0-9]+) was incorrect on entry to ([A-Za-z0-9_]+).*/\1 \2/p' "$1" |
        awk '!($2 == toupper($2) && previous == "cblas_" tolower($2)) { print } { previous = $2 }'
}
undetected() {
    sed -nE 's/.*ILLEGAL VALUE OF PARAMETER NUMBER +([0-9]+) NOT DETECTED BY ([A-Za-z0-9_]+).*/\1 \2/p' "$1"
}

# A finding: its title and its lines, indented; any finding fails the run.
status=0
finding() {
    [ -z "$2" ] && return 0
    echo "$1"
    echo "$2" | sed 's/^/  /'
    status=1
}
finding "passed on the reference BLAS alone but not with zor:" \
    "$(comm -23 <(passes "$baseline") <(passes "$withzor"))"
finding "failures with zor that the reference BLAS alone does not have:" \
    "$(comm -13 <(failures "$baseline") <(failures "$withzor"))"
finding "error exits that zor did not report as the program expected (< reported, > expected):" \
    "$(diff <(reported "$withzor") <(undetected "$withzor") || true)"
finding "the baseline itself missed argument errors:" "$(undetected "$baseline")"
# The program's references that zor resolved.
served=$(cat "$work/$name/zor"/bindings.* | grep -F "binding file $program " | grep -F " to $zor " |
    sed -nE "s/.*symbol \`([A-Za-z0-9_]+)'.*/\1/p" | sort -u | tr '\n' ' ' || true)
[ -n "$served" ] || finding "no call of the program went to zor:" "$zor"
echo "$name: served by zor: $served"
echo "$name: $(undetected "$withzor" | wc -l) argument errors reported by zor's xerbla as the program expected"
echo "$name: $([ $status = 0 ] && echo passed || echo FAILED)"
exit $status
