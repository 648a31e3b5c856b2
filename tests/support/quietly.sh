# For test scripts, which source it: a command that is heard only where it fails. They set `work`, a folder of their own.

# Runs a command, and shows what it wrote only if it fails.
quietly() {
  if ! "$@" >"$work/log" 2>&1; then
    printf 'failed: %s\n' "$*" >&2
    cat "$work/log" >&2
    return 1
  fi
}
