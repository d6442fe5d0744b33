#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the tools need, and only
# when something is missing, so that a machine that has them needs no network.
set -euo pipefail

packages=(cmake ninja-build g++ make pkg-config libgtest-dev libgmock-dev libexpat1-dev
          qt6-base-dev qt6-base-dev-tools qt6-charts-dev libqt6opengl6-dev libgl-dev fonts-dejavu-core clang-format
          dpkg-dev desktop-file-utils shared-mime-info
          default-jre-headless libsaxonhe-java
          xalan fop
          poppler-utils) # pdftotext, for the tests that read the PDF exports
if [ "${ZDT_WITH_FUZZ:-0}" = "1" ]; then
    packages+=(clang libclang-rt-14-dev)
fi

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if [ "${#missing[@]}" -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    SUDO=""
    if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
    export DEBIAN_FRONTEND=noninteractive
    $SUDO apt-get update -qq
    $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
