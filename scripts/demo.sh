#!/bin/sh
# demo.sh BUILD_DIR - the wycore command at work on the bundled example project.
#
# Checks the sample project (clean), prints its canonical text, then checks a deliberately broken
# copy, whose errors are listed with FILE:LINE. The broken file's non-zero status is expected;
# the demo itself fails only when something behaves otherwise.
set -u
build=${1:-build/release}
tool="$build/tools/wycore/wycore"
if [ ! -x "$tool" ]; then
  echo "demo: $tool not found; build first (make build)" >&2
  exit 1
fi
tool="$(cd "$(dirname "$tool")" && pwd)/wycore"
# Run from the project's root so that the reports name the files as the repository does.
cd "$(dirname "$0")/.." || exit 1
sample=examples/sample_project.wyp
broken=examples/broken_project.wyp

echo "== wycore check examples/sample_project.wyp"
"$tool" check "$sample" || { echo "demo: the sample project should read cleanly" >&2; exit 1; }

echo
echo "== wycore fmt examples/sample_project.wyp (canonical text)"
"$tool" fmt "$sample" || { echo "demo: fmt failed on the sample project" >&2; exit 1; }

echo
echo "== wycore check examples/broken_project.wyp (errors expected)"
"$tool" check "$broken"
status=$?
if [ "$status" -ne 1 ]; then
  echo "demo: the broken project should give exit status 1, got $status" >&2
  exit 1
fi

echo
echo "== wycore convert 3in mm"
"$tool" convert 3in mm || { echo "demo: convert failed" >&2; exit 1; }

echo
echo "== wycore units Temperature"
"$tool" units Temperature || { echo "demo: units failed" >&2; exit 1; }

echo
echo '== wycore eval "2*w + 1in" --var w=3mm (value with units, then the canonical text)'
"$tool" eval "2*w + 1in" --var w=3mm || { echo "demo: eval failed" >&2; exit 1; }

echo
echo "== wycore eval \"w/h\" --key \"w='3mm' h='2mm'\" (at a variation key)"
"$tool" eval "w/h" --key "w='3mm' h='2mm'" || { echo "demo: eval --key failed" >&2; exit 1; }

echo
echo "demo: done (the broken project's errors above are the expected result)"
exit 0
