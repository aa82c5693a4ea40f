#!/bin/sh
# The built Debian package as Debian's tools judge it: lintian reports no error and no warning (its
# informational tags are listed), the AppStream description in it validates, its manual pages
# render and its bash completion works, each from the package's own files.
# Usage: check_deb.sh DEB SOURCE-FOLDER
set -u
deb=$1 source=$2
status=0
echo "lintian:"
tags=$(lintian --info --pedantic "$deb" 2>&1 | grep -v '^running with root privileges')
printf '%s\n' "${tags:-  (no tags)}"
if printf '%s\n' "$tags" | grep -q '^[EW]:'; then
  echo "lintian reports errors or warnings"
  status=1
fi

root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT INT TERM
dpkg-deb -x "$deb" "$root" || exit 1
share=$root/usr/share
id=$(basename "$(ls "$share"/metainfo/*.metainfo.xml)" .metainfo.xml)
cp "$share/applications/$id.desktop" "$share/metainfo/"
sh "$source/tests/package/metainfo.sh" "$share/metainfo" "$id" || status=1
mkdir "$root/man"
for page in vossel vossel-cli; do
  gzip -dc "$share/man/man1/$page.1.gz" >"$root/man/$page.1" || status=1
done
sh "$source/tests/package/man.sh" "$root/usr/lib/vossel/vossel-cli" "$root/man" \
  "$share/bash-completion/completions/vossel-cli" || status=1
bash "$source/tests/package/completion.sh" "$share/bash-completion/completions/vossel-cli" ||
  status=1
exit "$status"
