#!/usr/bin/env bash
# Installs the Debian packages that building and testing need, when missing.
set -euo pipefail
packages=(g++ cmake make libgtest-dev libgmock-dev libbenchmark-dev libomp-dev clang
          libclang-rt-dev clang-format libpng-dev libcli11-dev
          python3-numpy python3-pybind11 pybind11-dev python3-pytest python3-dask
          python3-distributed python3-matplotlib python3-tqdm)
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if ((${#missing[@]})); then
  sudo_cmd=""
  [ "$(id -u)" -eq 0 ] || sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  $sudo_cmd apt-get install -y -qq "${missing[@]}"
fi
