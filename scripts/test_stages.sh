# How scripts/test runs its stages; what comes of them is kept by test_ledger.py. With lib.sh:
# `source "$(dirname -- "$0")/test_stages.sh"`.
# shellcheck shell=bash
source "$(dirname -- "${BASH_SOURCE[0]}")/lib.sh"

ledger() { "$project_root/scripts/test_ledger.py" "$results" "$@"; }

# begin FOLDER: from here on the script ends with a summary, however it ends. The folder is for reports.
begin() {
    results=$1
    mkdir -p "$results"
    rm -f "$results/ledger.json"
    trap finish EXIT
    trap 'exit 130' INT
    trap 'exit 143' HUP TERM
}

finish() {
    local status=$?
    ledger summary "$status" || {
        # Python says nothing where it is not to be had.
        [[ $? -eq 1 ]] || printf '0 passed, 1 failed\n'
        exit 1
    }
}

# stage NAME COMMAND...: runs a check that counts as one test and leaves its outcome in `stage_status`.
# It is not itself an exit status, because bash switches -e off inside whatever a condition calls.
stage() {
    local name=$1 begun=$SECONDS
    shift
    note "== $name"
    set +e
    (
        set -e
        "$@"
    ) </dev/null
    stage_status=$?
    set -e
    [[ $stage_status -eq 0 ]] || note "$name: failed (status $stage_status)"
    ledger check "$name" $((SECONDS - begun)) "$stage_status"
}

# ctest_stage NAME once|twice BUILD_FOLDER CTEST_OPTION...: tests of a build folder, each of which counts.
# How often a test may run: what fails in a stage of "twice" runs again after all stages, alone.
ctest_stage() {
    note "== $1"
    ledger ctest "$@"
}

# node_stage NAME once|twice FILE...: tests of files for node's test runner, one file after the other.
node_stage() {
    note "== $1"
    ledger node "$@"
}

# end: the second runs. Without it the run has failed, whatever its stages say.
end() { ledger end; }
