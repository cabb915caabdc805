#!/usr/bin/env bash
# Says plainly which build tools are missing. With --install, installs them
# from Debian's packages first (needs root).
set -u

missing=()
command -v cmake >/dev/null 2>&1 || missing+=(cmake)
command -v g++ >/dev/null 2>&1 || missing+=(g++)
command -v make >/dev/null 2>&1 || missing+=(make)
[ -f /usr/include/gtest/gtest.h ] || missing+=(libgtest-dev)

if [ ${#missing[@]} -gt 0 ] && [ "${1:-}" = "--install" ]; then
  echo "Installing missing build tools: ${missing[*]}"
  apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "${missing[@]}" && exec "$0"
fi

if [ ${#missing[@]} -gt 0 ]; then
  echo "q7cal cannot be built: missing ${missing[*]}."
  echo "Install with: apt-get install -y ${missing[*]}"
  exit 1
fi
