#!/usr/bin/env bash
# Installs the build tree into a scratch prefix and builds and runs a consumer project against it.
set -euo pipefail
build_dir=$1
source_dir=$( cd "$( dirname "${BASH_SOURCE[0]}" )" && pwd )
scratch=$( mktemp -d )
trap 'rm -rf "$scratch"' EXIT
cmake --install "$build_dir" --prefix "$scratch/prefix" > /dev/null
cmake -S "$source_dir/consumer" -B "$scratch/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" > /dev/null
cmake --build "$scratch/build" > /dev/null
"$scratch/build/consumer"
