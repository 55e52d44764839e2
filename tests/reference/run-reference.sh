#!/usr/bin/env bash
# Runs one of reference LAPACK's test programs (xlintstd, xeigtstz, ...) on an input file twice:
# on the reference library alone (the baseline) and with zor loaded ahead of it, and fails when the
# run with zor fails a test that the baseline passes.
#
#   run-reference.sh PROGRAM INPUT LIBZOR WORKDIR
#
# PROGRAM is a name in the reference test folder or a path; INPUT a data file in the published
# format. A failure is a line of the program's report that names a test ratio above the threshold
# (its ratio cut off, so that the same test compares equal in both runs), a count of failed tests,
# or a failed check of the error exits. The error exits are a case of their own: the program's
# XERBLA cannot see the reports of zor's own xerbla, so every argument error zor detects shows
# up as "not detected". Those lines are accepted when zor printed the matching report ("Parameter
# N was incorrect on entry to NAME") in the same order, and are otherwise failures.
set -euo pipefail

program=$1
input=$2
library=$3
work=$4
folder=/usr/lib/x86_64-linux-gnu
case $program in
    */*) ;;
    *) program=$folder/lapack/$program ;;
esac
mkdir -p "$work"
# One program may run the same input as another (nep.in for both precisions).
name=$(basename "$program")_$(basename "$input" .in)
baseline=$work/$name.baseline.out
withzor=$work/$name.zor.out

# The programs read the input from standard input and write their report to standard output;
# gfortran writes it at exit, after zor's own messages, which C stdio has flushed already.
run() {
    env LD_LIBRARY_PATH="$folder/lapack:$folder/blas" "$@" "$program" < "$input"
}
# Both runs at once: the machines have two cores.
run > "$baseline" 2>&1 &
baseline_run=$!
run LD_PRELOAD="$library" > "$withzor" 2>&1 || { echo "the run with zor failed:"; tail -20 "$withzor"; exit 1; }
wait $baseline_run || { echo "the baseline run of $program failed:"; tail -20 "$baseline"; exit 1; }
for out in "$baseline" "$withzor"; do
    grep -q "End of tests" "$out" || { echo "$out: the program did not finish"; tail -20 "$out"; exit 1; }
done

# The failures of a report, one a line, comparable between runs. The eigenproblem programs print a
# failed error-exit check as a bare "***" (their format's name field is left without its value).
failures() {
    grep -E 'test\( *[0-9]+\) *=|failed to pass|\*\*\*|(ILO or IHI wrong|info is not zero|info is not 0) *= *[1-9]' "$1" |
        grep -vE 'not detected by|failed the tests of the error exits|^ *\*\*\* *$' |
        sed -E 's/(test\( *[0-9]+\) *=).*/\1/; s/[0-9]+ out of +[0-9]+ tests/N tests/' | sort -u || true
}
# The argument errors zor reported, and those the program saw as not detected, as "N NAME".
reported() {
    sed -nE 's/.*ZOR ERROR: Parameter ([0-9]+) was incorrect on entry to ([A-Z0-9_]+).*/\1 \2/p' "$1"
}
undetected() {
    sed -nE 's/.*Illegal value of parameter number +([0-9]+) not detected by +([A-Z0-9_]+).*/\1 \2/p' "$1"
}

status=0
new=$(comm -13 <(failures "$baseline") <(failures "$withzor"))
if [ -n "$new" ]; then
    echo "failed with zor but not on the reference library alone:"
    echo "$new"
    status=1
fi
if ! diff <(reported "$withzor") <(undetected "$withzor") > "$work/$name.exits.diff"; then
    echo "error exits that zor did not report as the program expected (< reported, > expected):"
    cat "$work/$name.exits.diff"
    status=1
fi
if [ -n "$(undetected "$baseline")" ]; then
    echo "the baseline itself missed argument errors:"
    undetected "$baseline"
    status=1
fi
grep -E 'passed the threshold|failed to pass' "$withzor" | sed 's/^ *//' || true
echo "$(basename "$program") $(basename "$input"): $([ $status = 0 ] && echo passed || echo FAILED)"
exit $status
