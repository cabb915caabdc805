#!/usr/bin/env bash
# Holds what names Debian packages to the one list of them,
# packaging/packages.txt.
#
#   check-packages.sh --readme   the README's "Two commands" names what make
#                                run installs (the list's run rows), then what
#                                make test adds (its report and test rows)
set -u
here=$(cd "$(dirname "$0")" && pwd)
failed=0
fail() { echo "check-packages: $*" >&2; failed=1; }

rows() {  # TARGETS (an extended regex): the packages of the rows that name them
  awk -v want="^($1)\$" '!/^#/ && NF { n = split($2, t, ","); for (i = 1; i <= n; i++) if (t[i] ~ want) { print $1; break } }' \
    "$here/packages.txt" | sort -u
}

[ "${1:-}" = --readme ] || { echo "usage: check-packages.sh --readme" >&2; exit 2; }
# The paragraph after the heading, split where make test's share begins.
paragraph=$(awk '/^## Two commands/ { on = 1; next } on && NF { print } on && !NF && seen { exit } NF { seen = on }' \
  "$here/../README.md" | tr '\n' ' ')
run_part=${paragraph%%'`make test`'*}
test_part=${paragraph#*'`make test`'}
packages() { grep -o '`[^` ]*`' | tr -d '`' | sort -u; }
[ "$(packages <<<"$run_part")" = "$(rows run)" ] ||
  fail "README.md names for make run: $(packages <<<"$run_part" | xargs); packages.txt: $(rows run | xargs)"
[ "$(packages <<<"$test_part")" = "$(rows 'report|test')" ] ||
  fail "README.md names for make test: $(packages <<<"$test_part" | xargs); packages.txt: $(rows 'report|test' | xargs)"
exit $failed
