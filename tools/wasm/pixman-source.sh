#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Unpacks the source of Debian's pixman into DEST/pixman, for a target that has no pixman package
# of its own (WebAssembly); cmake/PixmanFromSource.cmake builds its region code from there.
#   tools/wasm/pixman-source.sh DEST
# The release tarball of Debian's source package, fetched by apt-get source with an apt state of
# its own under DEST: the deb lines of this machine's sources, turned into deb-src. The machine's
# apt configuration is left as it is, and no root is needed. apt checks the tarball against the
# signed index.
set -euo pipefail
dest=$(realpath -m "$1")
[ -f "$dest/pixman/pixman/pixman-region32.c" ] && exit 0

state=$dest/apt
rm -rf "$state" "$dest/download"
mkdir -p "$state/sources.list.d" "$state/lists/partial" "$state/cache/archives/partial" "$dest/download"
# Both formats of sources: one-line (sources.list, *.list) and deb822 (*.sources).
for f in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
  [ -f "$f" ] && sed -nE 's/^[[:space:]]*deb[[:space:]]/deb-src /p' "$f"
done >"$state/sources.list"
for f in /etc/apt/sources.list.d/*.sources; do
  [ -f "$f" ] && sed -E 's/^Types:.*/Types: deb-src/' "$f" >"$state/sources.list.d/$(basename "$f")"
done
apt_options=(-o "Dir::Etc::SourceList=$state/sources.list" -o "Dir::Etc::SourceParts=$state/sources.list.d"
             -o "Dir::State::Lists=$state/lists" -o "Dir::Cache=$state/cache"
             -o "APT::Sandbox::User=$(id -un)")
# A source whose index cannot be had (a third-party repository without sources) leaves the others.
apt-get "${apt_options[@]}" -qq update || echo "== apt-get update of the source indexes reported errors; using those it has"
(cd "$dest/download" && apt-get "${apt_options[@]}" -qq source --tar-only pixman)

tarball=$(find "$dest/download" -maxdepth 1 -name 'pixman_*.orig.tar.*' | head -n 1)
[ -n "$tarball" ] || { echo "pixman-source.sh: apt-get source gave no pixman tarball" >&2; exit 1; }
rm -rf "$dest/pixman.partial"
mkdir -p "$dest/pixman.partial"
tar -xf "$tarball" -C "$dest/pixman.partial" --strip-components=1
mv "$dest/pixman.partial" "$dest/pixman"
echo "== pixman source: $(basename "$tarball") in $dest/pixman"
