#!/usr/bin/env bash
# A PostgreSQL server of Debian's postgresql package for the history's tests
# and bench, in a scratch folder, on loopback, run as the package's postgres
# user (the server refuses root), with one database, q7cal.
#   scratch-postgres.sh start DIR   prints the database's URI; status 1 when
#                                   PostgreSQL is not installed, 2 when it
#                                   does not start (its log on stderr); a
#                                   server stopped in DIR starts again
#   scratch-postgres.sh stop DIR
set -u
action=$1
dir=$2
pgbin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | tail -n 1)
[ -n "$pgbin" ] || exit 1
as_postgres() { if [ "$(id -u)" -eq 0 ]; then runuser -u postgres -- "$@"; else "$@"; fi; }

if [ "$action" = stop ]; then
  as_postgres "$pgbin/pg_ctl" -D "$dir/data" -m immediate stop >/dev/null 2>&1
  exit 0
fi
# A server stopped earlier starts again with its data, on its port.
if [ -d "$dir/data" ]; then
  port=$(cat "$dir/port")
  as_postgres "$pgbin/pg_ctl" -D "$dir/data" -l "$dir/log" -w \
    -o "-c listen_addresses=127.0.0.1 -p $port -k $dir -c fsync=on" start >/dev/null 2>&1 || { cat "$dir/log" >&2; exit 2; }
  echo "postgresql://postgres@127.0.0.1:$port/q7cal"
  exit 0
fi
mkdir -p "$dir"
# The server's user must reach its folder.
if [ "$(id -u)" -eq 0 ]; then
  chown postgres "$dir"
  chmod o+x "$(dirname "$dir")"
fi
port=$(/usr/bin/python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
if ! { as_postgres "$pgbin/initdb" -D "$dir/data" -A trust -U postgres &&
  as_postgres "$pgbin/pg_ctl" -D "$dir/data" -l "$dir/log" -w \
    -o "-c listen_addresses=127.0.0.1 -p $port -k $dir -c fsync=on" start &&
  as_postgres "$pgbin/createdb" -h 127.0.0.1 -p "$port" -U postgres q7cal; } >/dev/null 2>&1; then
  cat "$dir/log" >&2 2>/dev/null
  exit 2
fi
echo "$port" >"$dir/port"
echo "postgresql://postgres@127.0.0.1:$port/q7cal"
