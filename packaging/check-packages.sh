#!/usr/bin/env bash
# Holds what names Debian packages to the one list of them,
# packaging/packages.txt.
#
#   check-packages.sh --readme   the README's "Two commands" names what make
#                                run installs (the list's run rows), then what
#                                make test adds (its report and test rows)
#   check-packages.sh DEB...     each built package depends only on the C and
#                                C++ runtime and the libraries that the list's
#                                rows for its program bring (q7cal: run;
#                                q7cal-report: report), and recommends only
#                                packages of the list or their libraries
set -u
here=$(cd "$(dirname "$0")" && pwd)
failed=0
fail() { echo "check-packages: $*" >&2; failed=1; }

rows() {  # TARGETS (an extended regex): the packages of the rows that name them
  awk -v want="^($1)\$" '!/^#/ && NF { n = split($2, t, ","); for (i = 1; i <= n; i++) if (t[i] ~ want) { print $1; break } }' \
    "$here/packages.txt" | sort -u
}
names() {  # a Depends-style field: one package name a line
  tr ',|' '\n\n' | sed 's/[[:space:]]*\([^[:space:](]*\).*/\1/' | grep -v '^$' | sort -u
}
libraries() {  # PACKAGE...: the packages, and what each installed one depends on
  printf '%s\n' "$@"
  for package in "$@"; do
    dpkg-query -W -f='${Depends}\n' "$package" 2>/dev/null | names
  done
}
outside() {  # FIELD-NAMES ALLOWED: the names not allowed
  comm -23 <(printf '%s\n' "$1" | grep -v '^$') <(printf '%s\n' "$2" | sort -u)
}

if [ "${1:-}" = --readme ]; then
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
fi

runtime=$'libc6\nlibgcc-s1\nlibstdc++6'  # what every program of the compiler links
# shellcheck disable=SC2046  # one package name a word
recommendable=$(libraries $(rows '[a-z]+'))
for deb in "$@"; do
  package=$(dpkg-deb -f "$deb" Package) || { fail "$deb is not a package"; continue; }
  case $package in
    q7cal) program_rows=run ;;
    q7cal-report) program_rows=report ;;
    *) fail "$deb: a package the list has no rows for: $package"; continue ;;
  esac
  # shellcheck disable=SC2046
  for name in $(outside "$(dpkg-deb -f "$deb" Depends | names)" "$runtime"$'\n'"$(libraries $(rows $program_rows))"); do
    fail "$package depends on $name, which no $program_rows row of packaging/packages.txt brings"
  done
  for name in $(outside "$(dpkg-deb -f "$deb" Recommends | names)" "$recommendable"); do
    fail "$package recommends $name, which packaging/packages.txt does not name"
  done
done
exit $failed
