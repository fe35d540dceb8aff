#!/usr/bin/env bash
# Installs from Debian's archive everything the build, the tests and the demo need.
set -euo pipefail
SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO="sudo"
APT_OPTS=(-y --no-install-recommends --no-upgrade -o DPkg::Lock::Timeout=300)

build=(g++ cmake ninja-build ccache clang-format pkg-config
       qt6-base-dev libqt6sql6-sqlite libqt6sql6-psql libqt6sql6-odbc
       unixodbc unixodbc-dev libcups2-dev fonts-dejavu-core fonts-liberation2 fonts-noto-cjk
       scdoc librsvg2-bin python3-markdown)
# The package test: cpack's dpkg-shlibdeps and file, lintian, and man to render the manual pages.
package=(dpkg-dev file lintian man-db)
peers=(python3 python3-aiosmtpd dovecot-pop3d dnsmasq-base bind9-dnsutils openssl
       cups cups-client cups-filters cups-daemon
       libsqliteodbc odbc-postgresql postgresql sqlite3
       libreoffice-calc-nogui libreoffice-writer-nogui poppler-utils python3-xlrd unrtf)
# scripts/screenshots.sh: a virtual X server for the windows, ImageMagick to list the pictures.
screens=(xvfb xauth imagemagick)

case "${1:-all}" in
  build) wanted=("${build[@]}") ;;
  screenshots) wanted=("${build[@]}" "${screens[@]}") ;;
  *) wanted=("${build[@]}" "${package[@]}" "${peers[@]}" "${screens[@]}") ;;
esac

missing=()
for pkg in "${wanted[@]}"; do
  dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed" || missing+=("$pkg")
done
if [ ${#missing[@]} -gt 0 ]; then
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install "${APT_OPTS[@]}" "${missing[@]}"
fi
