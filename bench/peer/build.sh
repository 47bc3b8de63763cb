#!/usr/bin/env bash
# Our column of the peer benchmark: builds the libraries (release) and the peer
# program into OUTDIR and leaves OUTDIR/bench. Called by the harness as
#   build.sh OUTDIR
set -euo pipefail
out=$(mkdir -p "$1" && cd "$1" && pwd)
repo=$(cd "$(dirname "$0")/../.." && pwd)
"$repo/scripts/install-deps"
cmake -S "$repo" -B "$out/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCORVANE_TESTS=OFF -DCORVANE_BENCH=ON >/dev/null
cmake --build "$out/build" --target peer_bench
ln -sf "$out/build/bench/peer/peer_bench" "$out/bench"
