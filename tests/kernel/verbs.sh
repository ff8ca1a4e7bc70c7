# What the tests of the guest say to each other: sourced by suite.

# expect PATTERN COMMAND...: the command succeeds, and a line of what it says matches.
expect() {
    local pattern=$1 said
    shift
    said=$("$@" 2>&1) || { printf '%s\n' "$said" "failed: $*" >&2 && return 1; }
    grep -qE -- "$pattern" <<<"$said" || { printf '%s\n' "$said" "has no '$pattern': $*" >&2 && return 1; }
}

# refuse STATUS PATTERN COMMAND...: the command ends with that exit status, and a line of what it says matches.
refuse() {
    local wanted=$1 pattern=$2 said status=0
    shift 2
    said=$("$@" 2>&1) || status=$?
    [ "$status" = "$wanted" ] && grep -qE -- "$pattern" <<<"$said" && return
    printf '%s\n' "$said" "status $status instead of $wanted, or no '$pattern': $*" >&2
    return 1
}

# eventually SECONDS COMMAND...: the command succeeds within that time.
eventually() {
    local until=$(($(date +%s) + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$(date +%s)" -lt "$until" ] || { echo "not in time: $*" >&2 && return 1; }
        sleep 0.05
    done
}

expect_kernel_warning() { echo "$1" >>"$TMPDIR/expected-warnings"; }

unplug_all() { :; }
