#!/bin/sh
# The AppStream description passes `appstreamcli validate --strict` (anything above a pedantic
# hint fails) and names the desktop entry that is installed beside it, which launches vossel for
# the GRF type the description provides.
# Usage: metainfo.sh DATA-FOLDER APP-ID
set -u
data=$1 id=$2
metainfo=$data/$id.metainfo.xml desktop=$data/$id.desktop
command -v appstreamcli >/dev/null || { echo "appstreamcli is not installed: skipped"; exit 77; }
status=0
appstreamcli validate --no-net --strict --explain "$metainfo" || status=1
grep -q "<id>$id</id>" "$metainfo" || { echo "the component id is not $id"; status=1; }
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" "$metainfo" ||
  { echo "the launchable is not $id.desktop"; status=1; }
[ -f "$desktop" ] || { echo "no desktop entry $desktop"; status=1; }
mime=$(sed -n 's/^MimeType=\(.*\);$/\1/p' "$desktop")
grep -q "<mediatype>$mime</mediatype>" "$metainfo" || { echo "no mediatype $mime"; status=1; }
exit "$status"
