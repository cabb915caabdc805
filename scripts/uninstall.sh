#!/usr/bin/env bash
# make uninstall: removes every file that the last `make install` from this
# build folder recorded in MANIFEST (under DESTDIR, when that is set as it was
# for the install), then the program's own folders (the private library
# folder, the two programs' doc folders) if they are left empty.
set -u
manifest=$1
destdir=${DESTDIR:-}
if [ ! -f "$manifest" ]; then
  echo "make uninstall: nothing to remove: $manifest is missing (make install writes it)" >&2
  exit 1
fi
# CMake ends the manifest's last line without a newline.
while IFS= read -r file || [ -n "$file" ]; do
  rm -fv -- "$destdir$file"
  folder=$destdir$(dirname -- "$file")
  case $folder in
    */q7cal | */q7cal-report) [ -d "$folder" ] && rmdir --ignore-fail-on-non-empty -- "$folder" ;;
  esac
done <"$manifest"
exit 0
