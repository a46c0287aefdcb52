#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes this machine run 32-bit Windows programs: Debian's 32-bit Wine, on a kernel that may not run
# 32-bit x86 code itself, through qemu's user-mode emulator registered for 32-bit x86 programs.
#   tools/wine32/setup.sh        install and register; prints the 32-bit Wine loader's path last
#   tools/wine32/setup.sh undo   remove the registration this script made
# qemu comes from Debian 12's backports: 7.2 spends about 45 s of CPU starting each Wine process
# (its search for free guest memory is quadratic in the pages Wine reserves), 10.0 a second or two.
# Exits non-zero, having said why, when something cannot be installed.
set -euo pipefail
exec 3>&1 1>&2 # what the installs print goes to standard error; the path alone to standard output
sudo=""
[ "$(id -u)" -eq 0 ] || sudo=sudo
binfmt=/proc/sys/fs/binfmt_misc
marker=/run/quillon-qemu-i386-registered

if [ "${1:-}" = undo ]; then
  if [ -e "$marker" ] && [ -e "$binfmt/qemu-i386" ]; then
    echo -1 | $sudo tee "$binfmt/qemu-i386" >/dev/null
    $sudo rm -f "$marker"
  fi
  exit 0
fi

. /etc/os-release
if [ "${VERSION_CODENAME:-}" = bookworm ]; then
  list=/etc/apt/sources.list.d/bookworm-backports.list
  [ -e "$list" ] || echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] http://deb.debian.org/debian bookworm-backports main" |
    $sudo tee "$list" >/dev/null
  qemu_release=(-t bookworm-backports)
else
  qemu_release=()
fi
dpkg --print-foreign-architectures | grep -qx i386 || $sudo dpkg --add-architecture i386
# An index that fails to download (a mirror in the middle of a sync) leaves the others usable.
$sudo apt-get update -qq || echo "== apt-get update reported errors; installing from the indexes it has"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get install -y -qq --no-install-recommends "${qemu_release[@]}" qemu-user

# wine32:i386 needs the i386 twin of every shared library at the very version the amd64 one has.
# When the i386 index of the security archive is stale, the twins of security updates are missing:
# then take both architectures from the main archive, naming the packages apt says it needs and
# pinning both twins of a pair to the version the i386 side can have (a downgrade of the amd64 one).
wanted=(wine32:i386 wine64 libwine)
fallback=()
for round in $(seq 12); do
  if out=$($sudo apt-get install -s --no-install-recommends --allow-downgrades "${fallback[@]}" "${wanted[@]}" 2>&1); then
    break
  fi
  fallback=(-t "${VERSION_CODENAME:-stable}")
  added=$(sed -nE \
    -e 's/.*Depends: ([a-z0-9.+-]+):i386( \([^)]*\))? but it is not (going to be installed|installable).*/\1:i386 \1/p' \
    -e 's/.*Breaks: ([a-z0-9.+-]+):i386 \(!= [^)]*\) but ([^ ]+) is to be installed.*/\1=\2 \1:i386=\2/p' <<<"$out" | tr ' ' '\n' | sort -u)
  [ -n "$added" ] || { echo "$out" | tail -n 8; echo "wine32 cannot be installed here" >&2; exit 1; }
  mapfile -t more <<<"$added"
  wanted+=("${more[@]}")
  [ "$round" -lt 12 ] || { echo "wine32: no installable set found" >&2; exit 1; }
done
[ ${#fallback[@]} -eq 0 ] || echo "== wine32: the i386 index lags the amd64 one; installing ${wanted[*]} from the main archive"
$sudo apt-get install -y -qq --no-install-recommends --allow-downgrades "${fallback[@]}" "${wanted[@]}"

# The handler: qemu-i386 for 32-bit x86 ELF programs, opened now (flag F) so that it also serves
# Wine's helper processes. One already there is replaced: with flag F it may still hold a qemu that
# an upgrade has since removed.
[ -e "$binfmt/register" ] || $sudo mount -t binfmt_misc binfmt_misc "$binfmt"
[ ! -e "$binfmt/qemu-i386" ] || echo -1 | $sudo tee "$binfmt/qemu-i386" >/dev/null
printf '%s' ':qemu-i386:M::\x7fELF\x01\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\x03\x00:\xff\xff\xff\xff\xff\xfe\xfe\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff:'"$(command -v qemu-i386)"':F' |
  $sudo tee "$binfmt/register" >/dev/null
$sudo touch "$marker"
/usr/lib/wine/wine --version >/dev/null
echo /usr/lib/wine/wine >&3
