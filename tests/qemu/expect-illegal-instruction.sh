#!/usr/bin/env bash
# Runs a command that must die of an illegal instruction (SIGILL), as a variant above the
# emulated processor's level does.
"$@"
status=$?
if [ $status -eq $((128 + 4)) ]; then
    echo "died of SIGILL, as it must"
    exit 0
fi
echo "expected death by SIGILL, got exit status $status"
exit 1
