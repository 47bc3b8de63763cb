#!/usr/bin/env bash
# Installs the build into a scratch prefix and checks what a user gets there:
# the examples built through find_package(corvane) and through pkg-config, run
# on the sample message, and the installed mimetool finding its libraries.
set -euo pipefail
build_dir=$1
source_dir=$(cd "$(dirname "$0")/../.." && pwd)
sample=$source_dir/tools/mimetool/emergency_invite.txt
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build_dir" --prefix "$prefix" >/dev/null
export LD_LIBRARY_PATH="$prefix/lib:$prefix/lib64:${LD_LIBRARY_PATH:-}"

cmake -S "$source_dir/examples" -B "$prefix/examples" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$prefix/examples" >/dev/null
listed=$("$prefix/examples/list_parts" "$sample")
expected="1 multipart/mixed, 2556 bytes
  1.1 application/sdp, 172 bytes
  1.2 application/pidf+xml, 663 bytes
  1.3 application/emergencycalldata.providerinfo+xml, 537 bytes
  1.4 application/emergencycalldata.comment+xml, 333 bytes"
[ "$listed" = "$expected" ] || { echo "list_parts printed:"; echo "$listed"; exit 1; }
"$prefix/examples/pack_parts" >"$prefix/packed.txt"
"$prefix/examples/list_parts" "$prefix/packed.txt" | grep -q "1.2 application/pidf+xml"

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig:$prefix/lib64/pkgconfig"
cc -std=c11 -Wall -Werror "$source_dir/examples/list_parts.c" -o "$prefix/list_parts_pc" $(pkg-config --cflags --libs corvane-mime)
[ "$("$prefix/list_parts_pc" "$sample")" = "$expected" ]

# The installed tool runs without LD_LIBRARY_PATH (its run path is bin/../lib).
env -u LD_LIBRARY_PATH "$prefix/bin/mimetool" | grep -q "1.3 application/EmergencyCallData.ProviderInfo+xml"
echo "examples and mimetool work from the installed package"
