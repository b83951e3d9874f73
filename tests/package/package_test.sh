#!/usr/bin/env bash
# Builds the Debian package from a finished build, unpacks it into a temporary root
# and runs what it installed there: kt930ctl on an empty HOME (the per-user folder is
# made from the shipped defaults), the host far enough to load its installed plug-in
# and show the frame; then checks the package and its files with Debian's own tools.
set -euo pipefail
build=$1
source_dir=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

# Two packages of one commit are the same bytes.
export SOURCE_DATE_EPOCH=$(git -C "$source_dir" log -1 --format=%ct)
cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/out" >/dev/null
cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/again" >/dev/null
deb=$(ls "$work"/out/kt930pc_*_*.deb)
cmp "$deb" "$work/again/$(basename "$deb")" || fail "two packages of one commit differ"
dpkg-deb -x "$deb" "$work/root"
usr=$work/root/usr

# Shared-library dependencies come from the binaries.
depends=$(dpkg-deb -f "$deb" Depends)
for needed in libqt6widgets6 libftdi1-2 libqt6help6 qt6-qpa-plugins; do
  [[ $depends == *"$needed"* ]] || fail "Depends lacks $needed: $depends"
done

# A read-only command on an empty home reads the shipped defaults and creates nothing.
export HOME=$work/home XDG_DATA_HOME= QT_QPA_PLATFORM=offscreen
unset KT930PC_APPDIR
mkdir -p "$HOME"
"$usr/bin/kt930ctl" show >"$work/show.txt" 2>"$work/show.err" || fail "kt930ctl show: $(cat "$work/show.err")"
expected="kt930ctl: there is no data folder $HOME/.local/share/kt930pc/Data yet: reading the shipped defaults in $usr/share/kt930pc/Data"
[ "$(head -n 1 "$work/show.err")" = "$expected" ] || fail "first-start message: $(head -n 1 "$work/show.err")"
[ ! -e "$HOME/.local/share/kt930pc" ] || fail "kt930ctl show created $HOME/.local/share/kt930pc"
grep -q '^Checkitems (37 used):$' "$work/show.txt" || fail "kt930ctl show printed: $(head -n 5 "$work/show.txt")"

# The host's self-test on a first start of its own: the message on stderr, never a box that waits.
HOME=$work/home2 "$usr/bin/kt930pc" --self-test >"$work/first.txt" 2>"$work/first.err" \
  || fail "kt930pc --self-test on a first start: $(cat "$work/first.txt" "$work/first.err")"
expected="kt930pc: Your data folder $work/home2/.local/share/kt930pc was created from the shipped defaults. Your checkitems, sequences and settings are kept there."
grep -qxF "$expected" "$work/first.err" || fail "first-start message of the self-test: $(cat "$work/first.err")"
cmp -s "$usr/share/kt930pc/Data/mit.dat" "$work/home2/.local/share/kt930pc/Data/mit.dat" || fail "mit.dat not copied"
[ "$(stat -c %a "$work/home2/.local/share/kt930pc/Data")" = 700 ] || fail "the new data folder is not private"

# The host on the same folder: the installed plug-in, not one found by a library path.
"$usr/bin/kt930pc" --self-test >"$work/host.txt" 2>"$work/host.err" || fail "kt930pc --self-test: $(cat "$work/host.txt" "$work/host.err")"
[ "$(cat "$work/host.txt")" = "plug-in \"Inspections and User Testers\" from $usr/lib/kt930pc/plugins/libVAROAutoSeqEditor.so
plug-in \"Test Procedures\" from $usr/lib/kt930pc/plugins/libTestProcedureEditor.so
window shown" ] || fail "kt930pc --self-test printed: $(cat "$work/host.txt")"

for help in AUTOSEQUENCEEDITOR.qch TestProcedureEditor.qch; do
  [ -s "$usr/share/kt930pc/$help" ] || fail "$help not installed"
done

desktop-file-validate "$usr"/share/applications/*.desktop || fail "desktop-file-validate"
appstreamcli validate --no-net "$usr"/share/metainfo/*.metainfo.xml >/dev/null || fail "appstreamcli validate"
rules=$usr/lib/udev/rules.d/60-kt930pc.rules
if udevadm verify --help >/dev/null 2>&1; then
  udevadm verify "$rules" || fail "udevadm verify"
fi
# Older udev has no verify (and a build machine may have no udev): the syntax by hand.
# Each rule: comma-separated KEY"value" pairs, matches with == or !=, at least one
# match and one assignment.
awk -F', ' '/^#/ || !NF { next }
  { m = a = 0
    for (i = 1; i <= NF; i++)
      if ($i ~ /^(SUBSYSTEMS?|KERNEL|DRIVERS?|ATTRS?\{[A-Za-z_]+\}|ENV\{[A-Z_]+\})(==|!=)"[^"]*"$/) m++
      else if ($i ~ /^(TAG|ENV\{[A-Z_]+\}|MODE|GROUP)(=|\+=|-=|:=)"[^"]*"$/) a++
      else { print "udev rule " NR ": cannot read " $i; bad = 1 }
    if (!m || !a) { print "udev rule " NR ": no match or no assignment"; bad = 1 } }
  END { exit bad }' "$rules" || fail "udev rule syntax"
# The rule grants the analyzer only: each line names a product, and every product the
# USB transport opens is named.
grep -v -e '^#' -e '^$' "$rules" | grep -v 'ATTRS{product}=="' && fail "a udev rule without a product"
grep -o 'openByDescription("[^"]*")' "$source_dir/src/comm/TgenericCommmunicationsModule.cpp" \
  | sed 's/.*("\(.*\)")/\1/' | while read -r product; do
  [ "$(grep -cF "ATTRS{product}==\"$product\"" "$rules")" = 2 ] || fail "udev rule for \"$product\""
done

# Every accepted lintian warning carries its reason on the comment line above it.
awk 'NF && $1 !~ /^#/ && prev !~ /^#/ { print "override without a reason: " $0; bad = 1 } { prev = $0 } END { exit bad }' \
  "$source_dir/packaging/lintian-overrides" || fail "lintian overrides"
lintian --pedantic --display-info --tag-display-limit 0 "$deb" >"$work/lintian.txt" 2>/dev/null || true
if grep -qE '^[EW]: |hardening' "$work/lintian.txt"; then
  cat "$work/lintian.txt" >&2
  fail "lintian reports errors, warnings or missing hardening"
fi
cat "$work/lintian.txt"
echo "package test passed: $(basename "$deb")"
