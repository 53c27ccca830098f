#!/bin/sh
# zandrel.rc, compiled by llvm-rc, carries the project's version: the
# numbers of the fixed file information and the "FileVersion" and
# "ProductVersion" texts ("1, 0, 0, 1" for 1.0.0.1).
# usage: version_resource.sh LLVM_RC ZANDREL_DIR GENERATED_DIR WORK_DIR VERSION
set -eu
rc=$1 zandrel=$2 generated=$3 work=$4 version=$5
mkdir -p "$work"
# llvm-rc reads an input path such as /ci/... or /usr/... as a Windows-style
# option ("/c", "/u"), so the script is named relative to its folder.
(cd "$zandrel" && "$rc" -I "$zandrel" -I "$generated" -fo "$work/zandrel.res" zandrel.rc)
hex=$(od -An -tx1 -v "$work/zandrel.res" | tr -s ' \n' '  ')

IFS=. read -r major minor patch tweak <<EOV
$version
EOV
tweak=${tweak:-0}
# One 16-bit number as two little-endian octets.
le16() { printf '%02x %02x' $(($1 % 256)) $(($1 / 256)); }
# A text as UTF-16LE octets.
utf16() { printf '%s' "$1" | od -An -tx1 -v | tr -s ' \n' '  ' | sed 's/^ //; s/ $//; s/\([0-9a-f][0-9a-f]\)/\1 00/g'; }

status=0
numbers="$(le16 "$minor") $(le16 "$major") $(le16 "$tweak") $(le16 "$patch")"
# VS_FIXEDFILEINFO: signature, structure version, file version, product version.
if ! printf '%s' "$hex" | grep -q "bd 04 ef fe .. .. .. .. $numbers $numbers"; then
  echo "FILEVERSION/PRODUCTVERSION are not $version: $(printf '%s' "$hex" | grep -o 'bd 04 ef fe.\{0,60\}')"
  status=1
fi
text="$major, $minor, $patch, $tweak"
for key in FileVersion ProductVersion; do
  if ! printf '%s' "$hex" | grep -qE "$(utf16 "$key") 00 00( 00 00)? $(utf16 "$text") 00 00"; then
    echo "the $key text is not \"$text\""
    status=1
  fi
done
exit $status
