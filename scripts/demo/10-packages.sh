# shellcheck shell=bash disable=SC2154
# Selects from the packages that are installed on this machine.

# step TEXT: what comes next.
step() { printf '\n# %s\n' "$1"; }

# run COMMAND...: shows the command as it would be typed, then what it gives.
run() {
  local word
  printf '$'
  for word; do
    case $word in
      *[!A-Za-z0-9_./,=-]* | '') printf " '%s'" "$word" ;;
      *) printf ' %s' "$word" ;;
    esac
  done
  printf '\n'
  "$@"
}

# The installed packages as JSON: an array of dictionaries. Fields are separated by tabs, which they cannot hold.
packages_json() {
  # shellcheck disable=SC2016
  dpkg-query --show --showformat='${db:Status-Status}\t${Package}\t${Version}\t${Architecture}\t${Section}\t${Priority}\t${Installed-Size}\t${Maintainer}\n' |
    LC_ALL=C awk -F '\t' '
      function text(s) {
        gsub(/\\/, "\\\\", s)
        gsub(/"/, "\\\"", s)
        gsub(/[\001-\037]/, " ", s)
        return "\"" s "\""
      }
      BEGIN { printf "[" }
      $1 == "installed" {
        printf "%s\n{\"name\": %s, \"version\": %s, \"architecture\": %s, \"section\": %s, \"priority\": %s, \"size\": %s, \"maintainer\": %s}",
          count++ ? "," : "", text($2), text($3), text($4), text($5), text($6), $7 ~ /^[0-9]+$/ ? $7 + 0 : "null", text($8)
      }
      END { print "\n]" }'
}

if ! command -v dpkg-query >/dev/null; then
  echo "This demonstration reads the list of installed packages, which this system does not have." >&2
  exit 1
fi

pushd "$demo_dir" >/dev/null || exit
packages_json >packages.json

step "packages.json holds the packages that are installed here, as dpkg-query lists them. A record:"
run head -n 2 packages.json

step "The largest libraries. Constants are arguments: %d takes an integer, %@ any value; sizes are in kB."
run qx select packages.json --where 'section = %@ and size > %d' --arg libs --arg 10000 \
  --sort size:descending --keys name,version,size --limit 10

step "By pattern: development files that are not of the C or C++ compiler, as JSON."
run qx select packages.json --where 'name like %@ and not maintainer like %@ and priority = %@' \
  --arg '*-dev' --arg '*GCC*' --arg optional --keys name,section --limit 5 --output json

step "How many belong to the basic system? What was asked is shown as a tree."
run qx explain 'priority = %@ or priority = %@' --arg required --arg important
run qx select packages.json --where 'priority = %@ or priority = %@' --arg required --arg important --count

step "Digits in a format are a key, not a number; explain tells what may not be meant."
run qx explain 'size > 10000' 2>&1

popd >/dev/null || exit
printf '\nqx select --help tells more; the same from C++ is in examples/.\n'
