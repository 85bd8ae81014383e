#!/usr/bin/env bash
# Installs the build tree into a scratch prefix, builds a consumer project against it and runs its
# three programs: an agent on the engine, a test on the reference chip, a scenario on the runner;
# has the installed nevqos-sim write a report page;
# then builds the example driver project (examples/driver) and runs its conformance suite.
# The installed include folder must hold NevQos/ alone, so that a consumer's path gains no other.
set -euo pipefail
build_dir=$1
source_dir=$( cd "$( dirname "${BASH_SOURCE[0]}" )" && pwd )
scratch=$( mktemp -d )
trap 'rm -rf "$scratch"' EXIT
cmake --install "$build_dir" --prefix "$scratch/prefix" > /dev/null
cmake -S "$source_dir/consumer" -B "$scratch/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" > /dev/null
cmake --build "$scratch/build" > /dev/null
include_dirs=$( ls "$scratch/prefix/include" )
if [ "$include_dirs" != "NevQos" ]; then
   echo "the installed include folder holds more than NevQos/:" $include_dirs
   exit 1
fi
"$scratch/build/consumer"
"$scratch/build/chip-consumer"
"$scratch/build/runner-consumer"
# The installed runner makes a report page from its own copy of the page, with no data files.
"$scratch/prefix/bin/nevqos-sim" "$scratch/prefix/share/NevQos/examples/edge-policy.yaml" \
   --summary --html "$scratch/page.html" > /dev/null
grep -q '<script id="report-data" type="application/json">{' "$scratch/page.html"
# The example driver project validates its driver with the installed conformance kit.
examples_dir=$( cd "$source_dir/../../examples/driver" && pwd )
cmake -S "$examples_dir" -B "$scratch/driver" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" > /dev/null
cmake --build "$scratch/driver" > /dev/null
"$scratch/driver/example-driver-conformance" --gtest_brief=1
echo "installed NevQos works"
