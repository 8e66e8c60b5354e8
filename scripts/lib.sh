# Shared by the bash scripts of this folder: `source "$(dirname "$0")/lib.sh"`.
# shellcheck shell=bash

set -euo pipefail

project_root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
program=$(basename -- "$0")

# Progress and trouble go to standard error: standard output may belong to an agent's protocol.
note() { printf '%s: %s\n' "$program" "$*" >&2; }
die() {
    note "$*"
    exit 1
}

# jobs: how many compilers may run side by side.
jobs_count() { nproc; }

# configure PRESET [CMAKE_OPTION...]: configures build/PRESET, in turns with those who build it.
configure() {
    local preset=$1
    shift
    mkdir -p "$project_root/build/$preset"
    (
        exec 0</dev/null 1>&2
        cd "$project_root"
        flock -o "build/$preset/.build.lock" cmake --preset "$preset" "$@"
    )
}

# build PRESET [CMAKE_OPTION...]: configures where that is needed and builds build/PRESET.
# Reads nothing from standard input and prints only to standard error. Several callers at once take turns.
build() {
    local preset=$1
    shift
    local folder=$project_root/build/$preset
    mkdir -p "$folder"
    (
        exec 0</dev/null 1>&2
        flock 9
        cd "$project_root"
        if [[ $# -gt 0 || ! -f $folder/build.ninja ]]; then
            cmake --preset "$preset" "$@" 9>&-
        fi
        cmake --build "$folder" --parallel "$(jobs_count)" 9>&-
    ) 9>"$folder/.build.lock"
}
