#!/usr/bin/env bash
# Usage: check_vector_objects.sh OBJECT...
# The vector builds of the codecs are compiled for instruction sets that the
# processor may lack. They must define no function that the linker could share
# with the other builds (a weak or global text symbol, such as an inline library
# function): the linker might keep their copy for every caller.
set -euo pipefail
status=0
for object in "$@"; do
  symbols=$(nm -C "$object") # fails the check when the object is missing
  shared=$(echo "$symbols" | awk '$2 ~ /^[WVTu]$/')
  if [ -n "$shared" ]; then
    echo "$object defines functions that other objects may share:"
    echo "$shared"
    status=1
  fi
done
exit $status
