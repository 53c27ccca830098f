#!/bin/bash
# Checks the .deb packages that `make package` built: unpacks them into a
# scratch root (dpkg -x) and runs what they install from there, then lintian.
# usage: check_package.sh PACKAGE_BUILD_DIR
set -euo pipefail
build=$(cd "$1" && pwd)
source_dir=$(cd "$(dirname "$0")/.." && pwd)
shell_tests=$source_dir/tests/shell
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
root=$build/root
failures=0
fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}
pass() { echo "ok: $*"; }

debs=("$build"/*_"$version"_*.deb)
[[ -e ${debs[0]} ]] || { echo "no package of version $version in $build"; exit 1; }
rm -rf "$root" && mkdir -p "$root"
for deb in "${debs[@]}"; do
  package=$(dpkg-deb -f "$deb" Package)
  [[ $(dpkg-deb -f "$deb" Version) == "$version" ]] || fail "$package: version is not $version"
  dpkg-deb -f "$deb" Depends | grep -q 'libc6' || fail "$package: Depends lacks libc6 (shlibdeps)"
  dpkg -x "$deb" "$root"
done
pass "unpacked: ${debs[*]##*/}"
unset LD_LIBRARY_PATH

# The command line.
velmora=$root/usr/bin/velmora
[[ $("$velmora" --version) == "velmora $version" ]] || fail "velmora --version: $("$velmora" --version)"
if "$velmora" -q "$source_dir/samples/trace.txt" "$build/message.txt" && grep -q '^Message type:SETUP' "$build/message.txt"; then
  pass "the installed velmora translates samples/trace.txt"
else
  fail "the installed velmora does not translate samples/trace.txt"
fi
bash "$shell_tests/completion.sh" "$velmora" "$root/usr/share/bash-completion/completions/velmora" &&
  pass "bash completion" || fail "bash completion"
pages=("$root"/usr/share/man/man1/*.1.gz)
sh "$shell_tests/man_render.sh" "${pages[@]}" && pass "man -l, groff -ww: ${pages[*]##*/}" || fail "manual pages"
[[ -f $root/usr/share/doc/velmora/copyright ]] || fail "no share/doc/velmora/copyright"

# The dialog, when it was built.
if [[ -e $root/usr/bin/zandrel ]]; then
  deb=$(ls "$build"/zandrel_"$version"_*.deb)
  dpkg-deb -f "$deb" Depends | grep -q 'libqt6widgets6' || fail "zandrel: Depends lacks libqt6widgets6"
  [[ -e $root/usr/share/man/man1/zandrel.1.gz ]] || fail "no zandrel(1)"
  entry=$root/usr/share/applications/zandrel.desktop
  desktop-file-validate "$entry" && pass "desktop-file-validate zandrel.desktop" || fail "desktop entry"
  icon=$(sed -n 's/^Icon=//p' "$entry")
  [[ -x $root/usr/bin/$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$entry") ]] || fail "the desktop entry's Exec is not installed"
  for size in 16x16 32x32; do
    [[ $(file -b "$root/usr/share/icons/hicolor/$size/apps/$icon.png") == "PNG image data, ${size/x/ x }"* ]] ||
      fail "no $size PNG icon $icon"
  done
  grep -q '<svg' "$root/usr/share/icons/hicolor/scalable/apps/$icon.svg" || fail "no scalable icon $icon"
  # Still running after two seconds: it found its libraries and opened the dialog.
  status=0
  QT_QPA_PLATFORM=offscreen timeout 2 "$root/usr/bin/zandrel" 2>"$build/zandrel.stderr" || status=$?
  [[ $status == 124 ]] && pass "the installed zandrel starts" ||
    fail "the installed zandrel ended with $status: $(cat "$build/zandrel.stderr")"
fi

start=$SECONDS
if lintian --allow-root --fail-on error "${debs[@]}"; then
  pass "lintian: no error ($((SECONDS - start)) s)"
else
  fail "lintian reports errors"
fi

if ((failures > 0)); then
  echo "package check: $failures failed"
  exit 1
fi
echo "package check: passed"
